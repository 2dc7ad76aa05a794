#pragma once

#include "base/Subscription.h"
#include "platform/Displays.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nocta {

/// An application that runs. Stands for NSRunningApplication.
struct RunningApplication {
    std::optional<std::string> bundleIdentifier;
    std::string localizedName;
    bool operator==(const RunningApplication&) const = default;
};

/// A window on screen, in points. What the desktop does not tell is missing.
struct WindowInfo {
    std::optional<double> width;
    std::optional<double> height;
};

// Posted on the notification centre when a window of this program's own becomes full screen, and
// when it is no longer.
inline constexpr std::string_view windowDidEnterFullScreenNotification = "WindowDidEnterFullScreen";
inline constexpr std::string_view windowDidExitFullScreenNotification = "WindowDidExitFullScreen";

/// The applications of the session and what they show. Stands for NSWorkspace.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Calls back from the run loop whenever another application has come to the front; with none
    /// where the desktop does not tell which. Stands for
    /// NSWorkspaceDidActivateApplicationNotification.
    virtual Subscription observeDidActivateApplication(
        std::function<void(const std::optional<RunningApplication>&)> callback) = 0;

    virtual std::optional<RunningApplication> frontmostApplication() = 0;

    /// The windows of every application that are on screen; none where they cannot be listed.
    /// Stands for CGWindowListCopyWindowInfo, on screen only and relative to no window.
    virtual std::optional<std::vector<WindowInfo>> copyWindowInfo() = 0;

    /// Of the screen that has the keyboard's focus. Stands for the frame of NSScreen.mainScreen.
    virtual std::optional<Rect> mainScreenFrame() = 0;

    /// The user's wish for less movement on the screen.
    virtual bool accessibilityDisplayShouldReduceMotion() = 0;
};

} // namespace nocta
