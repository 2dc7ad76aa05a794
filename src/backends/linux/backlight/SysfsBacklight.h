#pragma once

#include "platform/Backlight.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace nocta {

/// The backlights of built-in displays as the kernel lists them in `<sysfs>/class/backlight`; see
/// `backlightDevice`. This class writes the device's file if permissions allow it. Otherwise it
/// asks the session's seat manager to write the level, and does not wait for an answer.
class SysfsBacklight final : public Backlight {
public:
    /// Returns the display server's name for a display's output, or an empty string.
    using OutputName = std::function<std::string(DisplayId)>;
    /// Requests a raw level for the backlight device with the given name. Returns false if the
    /// request cannot be sent.
    using SessionWriter = std::function<bool(const std::string& device, std::uint32_t level)>;

    SysfsBacklight(Displays& displays, OutputName outputName, SessionWriter sessionWriter,
                   std::filesystem::path sysfs = "/sys");

    Status getBrightness(DisplayId display, float& level) override;
    Status setBrightness(DisplayId display, float level) override;

private:
    /// Looks up the device on every call, because drivers may be loaded and unloaded.
    std::optional<std::filesystem::path> device(DisplayId display) const;

    Displays& displays_;
    OutputName outputName_;
    SessionWriter sessionWriter_;
    std::filesystem::path sysfs_;
};

/// Writes through logind's SetBrightness on the system bus, for the session of this process.
bool setBrightnessThroughLogind(const std::string& device, std::uint32_t level);

} // namespace nocta
