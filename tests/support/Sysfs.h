#pragma once

#include "support/Process.h"

#include <filesystem>
#include <string>

namespace nocta {

/// A folder that imitates the kernel's sysfs for graphics cards, connectors and backlights.
class Sysfs {
public:
    const std::string& path() const { return folder_.path(); }

    // Possible parents of a backlight, relative to this folder.
    static std::string card(const std::string& card) { return "devices/pci-of-" + card; }
    static std::string connector(const std::string& card, const std::string& name) {
        return Sysfs::card(card) + "/drm/" + card + "/" + card + "-" + name;
    }
    static std::string platform() { return "devices/platform/panel"; }

    void addConnector(const std::string& card, const std::string& name,
                      const std::string& status = "connected") const {
        add(connector(card, name), "drm");
        writeFile(path() + "/" + connector(card, name) + "/status", status + "\n");
        const auto ofCard = path() + "/" + Sysfs::card(card) + "/drm/" + card + "/device";
        if (!std::filesystem::exists(ofCard)) {
            std::filesystem::create_symlink("../..", ofCard);
        }
    }
    void addBacklight(const std::string& name, const std::string& type, const std::string& parent,
                      const std::string& level = "1000") const {
        const auto folder = path() + "/" + add(parent + "/" + name, "backlight");
        writeFile(folder + "/type", type + "\n");
        writeFile(folder + "/max_brightness", "1000\n");
        writeFile(folder + "/brightness", level + "\n");
    }
    std::string level(const std::string& backlight) const {
        return contentOf(path() + "/class/backlight/" + backlight + "/brightness");
    }

private:
    /// Adds a device with a link to its parent, and adds the device to its class.
    std::string add(const std::string& device, const std::string& ofClass) const {
        std::filesystem::create_directories(path() + "/" + device);
        std::filesystem::create_symlink("..", path() + "/" + device + "/device");
        const auto folder = std::filesystem::path(path()) / "class" / ofClass;
        std::filesystem::create_directories(folder);
        std::filesystem::create_symlink("../../" + device,
                                        folder / std::filesystem::path(device).filename());
        return device;
    }

    TemporaryFolder folder_;
};

} // namespace nocta
