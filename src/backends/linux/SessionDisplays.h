#pragma once

#include "base/NotificationCenter.h"
#include "platform/Displays.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace nocta {

/// The displays that a subclass has most recently read from the display server and published.
class SessionDisplays : public Displays {
public:
    explicit SessionDisplays(NotificationCenter& notificationCenter)
        : notificationCenter_(notificationCenter) {}

    Status getActiveDisplayList(std::span<DisplayId> ids, std::uint32_t& count) override;
    Rect displayBounds(DisplayId display) override { return find(display).bounds; }
    bool displayIsMain(DisplayId display) override { return find(display).isMain; }
    bool displayIsBuiltin(DisplayId display) override { return find(display).isBuiltIn; }
    std::optional<DisplayMode> displayCopyDisplayMode(DisplayId display) override {
        return find(display).mode;
    }

    /// The IDs of all displays.
    std::vector<DisplayId> ids() const;

    /// The name of a display's output, which the server derives from the name of its connector:
    /// "eDP-1", "HDMI-2". Empty if the display is gone.
    const std::string& outputName(DisplayId display) const { return find(display).name; }

protected:
    struct Display {
        DisplayId id = 0;
        std::string name; ///< the name of the output
        bool isMain = false;
        bool isBuiltIn = false;
        Rect bounds;
        std::optional<DisplayMode> mode;
        std::optional<std::uint32_t> crtc{}; ///< drives the display
        bool operator==(const Display&) const = default;
    };

    /// Posts `didChangeScreenParametersNotification` if anything has changed.
    void publish(std::vector<Display> displays);

    /// Returns the ID of a connector, which stays the same while the program runs.
    DisplayId idOf(const std::string& connector);

    /// Returns an empty description if the display is gone.
    const Display& find(DisplayId display) const;

private:
    NotificationCenter& notificationCenter_;
    std::vector<Display> displays_;
    std::map<std::string, DisplayId> idsOfConnectors_;
};

} // namespace nocta
