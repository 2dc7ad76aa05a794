#pragma once

#include "backends/virtual/Trace.h"
#include "backends/virtual/VirtualDisplays.h"
#include "base/CallbackList.h"
#include "base/Typing.h"
#include "platform/OverlayWindows.h"

#include <list>
#include <memory>
#include <optional>
#include <vector>

namespace nocta {

/// Overlay windows in memory. Each display is one screen.
class VirtualOverlayWindows final : public OverlayWindows {
public:
    VirtualOverlayWindows(Trace& trace, RunLoop& runLoop, const VirtualDisplays& displays)
        : trace_(trace), runLoop_(runLoop), displays_(displays) {}

    /// A window of the program, as the user sees it.
    struct Shown {
        Screen screen;
        Style style;
        View* content = nullptr;
        double alpha = 0;
        bool isOnScreen = false;
    };

    // For tests: what the user does and sees.
    std::vector<Shown> windows() const;
    /// The screen whose window has keyboard focus; empty if no window of the program has focus.
    std::optional<std::uint64_t> keyScreen;
    /// Presses a key. Returns whether the focused window gets the event. The window does not get
    /// the event if a monitor swallows it, or if the user has been typing since before the first
    /// window appeared.
    bool press(std::int64_t keyCode);

    // For the program: the functions of the port.
    std::vector<Screen> screens() override;
    std::unique_ptr<OverlayWindow> makeWindow(const Screen& screen, const Style& style,
                                              std::unique_ptr<View> content) override;
    Subscription
    addLocalMonitorForKeyDown(std::function<bool(const KeyDownEvent&)> handler) override;

private:
    class Window;

    struct Press {
        KeyDownEvent event;
        bool* isSwallowed;
    };

    Trace& trace_;
    RunLoop& runLoop_;
    const VirtualDisplays& displays_;
    std::list<Window*> windows_;
    Typing typing_;
    std::optional<MonotonicTime> shownSince_; ///< empty if no window is on screen
    CallbackList<Press> monitors_;
};

} // namespace nocta
