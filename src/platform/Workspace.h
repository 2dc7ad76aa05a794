#pragma once

#include "base/Subscription.h"
#include "platform/Displays.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nocta {

/// A running application. Stands for NSRunningApplication.
struct RunningApplication {
    std::optional<std::string> bundleIdentifier;
    std::string localizedName;
    bool operator==(const RunningApplication&) const = default;
};

/// The size of a window on screen, in points. A value that the desktop does not provide is missing.
struct WindowInfo {
    std::optional<double> width;
    std::optional<double> height;
};

// Posted to the notification center when a window of this program enters or leaves full screen.
inline constexpr std::string_view windowDidEnterFullScreenNotification = "WindowDidEnterFullScreen";
inline constexpr std::string_view windowDidExitFullScreenNotification = "WindowDidExitFullScreen";

/// The applications of the session and their windows. Stands for NSWorkspace.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Calls `callback` from the run loop whenever another application comes to the front, with
    /// none if the desktop does not identify it. Stands for
    /// NSWorkspaceDidActivateApplicationNotification.
    virtual Subscription observeDidActivateApplication(
        std::function<void(const std::optional<RunningApplication>&)> callback) = 0;

    virtual std::optional<RunningApplication> frontmostApplication() = 0;

    /// All windows on screen, of every application; none if the desktop cannot list them. Stands
    /// for CGWindowListCopyWindowInfo with the option for on-screen windows only.
    virtual std::optional<std::vector<WindowInfo>> copyWindowInfo() = 0;

    /// The frame of the screen that has the keyboard focus. Stands for NSScreen.mainScreen.frame.
    virtual std::optional<Rect> mainScreenFrame() = 0;

    /// Whether the user prefers reduced motion.
    virtual bool accessibilityDisplayShouldReduceMotion() = 0;
};

} // namespace nocta
