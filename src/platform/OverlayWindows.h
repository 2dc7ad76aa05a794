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

/// A borderless window that can have the keyboard but is never the main window. It is created
/// hidden and with an alpha of 0; destroying it removes it from the screen. Stands for
/// HostingOverlayWindow.
class OverlayWindow {
public:
    virtual ~OverlayWindow() = default;

    virtual void makeKeyAndOrderFront() = 0;
    virtual void orderOut() = 0;

    /// Fades from the current alpha to `target`, and replaces a running fade. At the end
    /// `completion` is called from the run loop, unless the fade was replaced or the window
    /// destroyed.
    virtual void animateAlpha(double target, Duration duration, TimingFunction curve,
                              std::function<void()> completion = {}) = 0;
};

/// Windows that cover screens, and the keys that are pressed in them.
class OverlayWindows {
public:
    using WindowLevel = std::int64_t;

    struct Style {
        /// 1000 is the level of a screen saver: above everything, even full-screen windows.
        WindowLevel level = 0;
        /// A bit mask: 1 is on all workspaces, 256 is over another program's full-screen window.
        std::uint32_t collectionBehavior = 0;
    };

    virtual ~OverlayWindows() = default;

    /// The screens that are connected now.
    virtual std::vector<Screen> screens() = 0;

    /// A window that covers exactly the frame of `screen` and takes mouse events. It has no shadow
    /// and no background.
    virtual std::unique_ptr<OverlayWindow> makeWindow(const Screen& screen, const Style& style,
                                                      std::unique_ptr<View> content) = 0;

    /// Calls `handler` for every key that goes down in a window of this program, before the window
    /// gets it; `true` swallows the key. A user who is typing when overlay windows appear has not
    /// seen them yet, so until a pause in the typing the keys reach neither the handler nor a
    /// window. The repeats of a held key never do. Stands for addLocalMonitorForEventsMatchingMask
    /// with key-down events (mask 1 << 10).
    virtual Subscription
    addLocalMonitorForKeyDown(std::function<bool(const KeyDownEvent&)> handler) = 0;
};

} // namespace nocta
