#pragma once

#include "base/RunLoop.h"
#include "base/Subscription.h"
#include "base/TimingFunction.h"
#include "platform/Displays.h"
#include "platform/KeyEvents.h"
#include "platform/Views.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace nocta {

/// A screen, with its frame in the coordinate system that all screens share.
struct Screen {
    std::uint64_t id = 0;
    Rect frame;
};

/// A borderless window that can have keyboard focus but is never the main window. It is created
/// hidden and with an alpha of 0; destroying it removes it from the screen.
class OverlayWindow {
public:
    virtual ~OverlayWindow() = default;

    virtual void makeKeyAndOrderFront() = 0;
    virtual void orderOut() = 0;

    /// Fades from the current alpha to `target`, and replaces a running fade. The run loop calls
    /// `completion` at the end, unless the fade was replaced or the window was destroyed.
    virtual void animateAlpha(double target, Duration duration, TimingFunction curve,
                              std::function<void()> completion = {}) = 0;
};

/// Makes windows that cover whole screens, and monitors the keys that are pressed in them.
class OverlayWindows {
public:
    using WindowLevel = std::int64_t;

    struct Style {
        /// 1000 is the level of a screen saver, above everything else, including full-screen
        /// windows.
        WindowLevel level = 0;
        /// A bit mask: 1 shows the window on all workspaces, 256 above another program's
        /// full-screen window.
        std::uint32_t collectionBehavior = 0;
    };

    virtual ~OverlayWindows() = default;

    /// Returns the screens that are currently connected.
    virtual std::vector<Screen> screens() = 0;

    /// Makes a window that covers exactly the frame of `screen` and receives mouse events. It has
    /// no shadow and no background.
    virtual std::unique_ptr<OverlayWindow> makeWindow(const Screen& screen, const Style& style,
                                                      std::unique_ptr<View> content) = 0;

    /// Calls `handler` for every key press in a window of this program, before the window gets the
    /// event. If the handler returns true, the window does not get it. If the user is typing when
    /// overlay windows appear, they may not have seen the windows yet. Until they pause, their key
    /// presses reach neither the handler nor a window. Auto-repeated key presses never reach them.
    /// Corresponds to addLocalMonitorForEventsMatchingMask for key-down events (mask 1 << 10) on
    /// macOS.
    virtual Subscription
    addLocalMonitorForKeyDown(std::function<bool(const KeyDownEvent&)> handler) = 0;
};

} // namespace nocta
