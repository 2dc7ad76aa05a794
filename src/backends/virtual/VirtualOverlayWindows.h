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

/// Overlay windows in memory, one screen for each display.
class VirtualOverlayWindows final : public OverlayWindows {
public:
    VirtualOverlayWindows(Trace& trace, RunLoop& runLoop, const VirtualDisplays& displays)
        : trace_(trace), runLoop_(runLoop), displays_(displays) {}

    /// A window that the program has, as a person sees it.
    struct Shown {
        Screen screen;
        Style style;
        View* content = nullptr;
        double alpha = 0;
        bool isOnScreen = false;
    };

    // What a person does and sees.
    std::vector<Shown> windows() const;
    /// The one that has the keyboard; none where nothing of the program's has it.
    std::optional<std::uint64_t> keyScreen;
    /// Whether the window with the keyboard gets the key: no monitor has swallowed it, and it is
    /// not typed on from before the first window came.
    bool press(std::int64_t keyCode);

    // What the program does.
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
    std::optional<MonotonicTime> shownSince_; ///< while one is on screen
    CallbackList<Press> monitors_;
};

} // namespace nocta
