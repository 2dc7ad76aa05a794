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

/// A screen, with its frame in the coordinates that all screens share.
struct Screen {
    std::uint64_t id = 0;
    Rect frame;
};

/// A borderless window that can have the keyboard but is never the main window. It is made with an
/// alpha of 0 and not on screen; its destruction takes it off the screen. Stands for
/// HostingOverlayWindow.
class OverlayWindow {
public:
    virtual ~OverlayWindow() = default;

    virtual void makeKeyAndOrderFront() = 0;
    virtual void orderOut() = 0;

    /// Fades from the present alpha, replacing a fade that is running; `completion` is called from
    /// the run loop at its end, unless it was replaced or the window has gone.
    virtual void animateAlpha(double target, Duration duration, TimingFunction curve,
                              std::function<void()> completion = {}) = 0;
};

/// Windows that cover screens, and the keys that are pressed in them.
class OverlayWindows {
public:
    using WindowLevel = std::int64_t;

    struct Style {
        /// 1000 is that of a screen saver: above everything, full-screen windows as well.
        WindowLevel level = 0;
        /// A mask of 1, on all workspaces, and 256, over another program's full-screen window.
        std::uint32_t collectionBehavior = 0;
    };

    virtual ~OverlayWindows() = default;

    /// The screens that there are now.
    virtual std::vector<Screen> screens() = 0;

    /// A window over exactly that frame, without shadow or background of its own, that takes the
    /// mouse.
    virtual std::unique_ptr<OverlayWindow> makeWindow(const Screen& screen, const Style& style,
                                                      std::unique_ptr<View> content) = 0;

    /// Every key that goes down in a window of this program, before the window gets it; `true`
    /// swallows it. Somebody who is typing when overlay windows come has not seen them yet: until a
    /// pause in the typing those keys reach neither the handler nor a window, and neither do the
    /// repeats of a held key. Stands for addLocalMonitorForEventsMatchingMask with key-down events
    /// (mask 1 << 10).
    virtual Subscription
    addLocalMonitorForKeyDown(std::function<bool(const KeyDownEvent&)> handler) = 0;
};

} // namespace nocta
