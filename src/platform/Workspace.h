#pragma once

#include "base/Subscription.h"
#include "platform/Displays.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nocta {

/// A running application. Corresponds to NSRunningApplication on macOS.
struct RunningApplication {
    std::optional<std::string> bundleIdentifier;
    std::string localizedName;
    bool operator==(const RunningApplication&) const = default;
};

/// The size of a window on screen, in points. A member is `std::nullopt` if the desktop does not
/// provide it.
struct WindowInfo {
    std::optional<double> width;
    std::optional<double> height;
};

// Posted to the notification center when a window of this program enters or leaves full screen.
inline constexpr std::string_view windowDidEnterFullScreenNotification = "WindowDidEnterFullScreen";
inline constexpr std::string_view windowDidExitFullScreenNotification = "WindowDidExitFullScreen";

/// The applications of the session and their windows. Corresponds to NSWorkspace on macOS.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Calls `callback` from the run loop whenever another application comes to the front. The
    /// argument is `std::nullopt` if the desktop does not identify the application. Corresponds to
    /// NSWorkspaceDidActivateApplicationNotification on macOS.
    virtual Subscription observeDidActivateApplication(
        std::function<void(const std::optional<RunningApplication>&)> callback) = 0;

    virtual std::optional<RunningApplication> frontmostApplication() = 0;

    /// Returns the windows of all applications that are on screen, or `std::nullopt` if the desktop
    /// cannot list them. Corresponds to CGWindowListCopyWindowInfo on macOS, with the option for
    /// on-screen windows only.
    virtual std::optional<std::vector<WindowInfo>> copyWindowInfo() = 0;

    /// Returns the frame of the screen that has keyboard focus. Corresponds to
    /// NSScreen.mainScreen.frame on macOS.
    virtual std::optional<Rect> mainScreenFrame() = 0;

    /// Returns whether the user prefers reduced motion.
    virtual bool accessibilityDisplayShouldReduceMotion() = 0;
};

} // namespace nocta
