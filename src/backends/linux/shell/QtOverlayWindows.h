#pragma once

#include "backends/linux/x11/X11Connection.h"
#include "base/CallbackList.h"
#include "base/Typing.h"
#include "platform/Displays.h"
#include "platform/OverlayWindows.h"

#include <memory>
#include <optional>
#include <vector>

class QKeyEvent;
class QScreen;
class QWindow;

namespace nocta {

/// Overlay windows in Qt. On X11 they are none of the window manager's business, so that they cover
/// their screens exactly, on every workspace and above full-screen windows, whatever manages them
/// or nothing does. The keyboard they take themselves, and take it back from a window that comes up
/// below them, so that nobody types into what cannot be seen; the last one that goes gives it back
/// to the window that had it. What somebody was typing when they came reaches nobody. Without a
/// compositor they are dark and opaque.
class QtOverlayWindows final : public OverlayWindows {
public:
    /// Without an X server, `connection` and `typing` are null. Without `typing`, only the repeats
    /// of a held key count as typed before.
    QtOverlayWindows(RunLoop& runLoop, Displays& displays, X11Connection* connection,
                     const Typing* typing);
    QtOverlayWindows(const QtOverlayWindows&) = delete;
    QtOverlayWindows& operator=(const QtOverlayWindows&) = delete;
    ~QtOverlayWindows() override;

    std::vector<Screen> screens() override;
    std::unique_ptr<OverlayWindow> makeWindow(const Screen& screen, const Style& style,
                                              std::unique_ptr<View> content) override;
    Subscription
    addLocalMonitorForKeyDown(std::function<bool(const KeyDownEvent&)> handler) override;

private:
    class Window;
    class KeyFilter;
    struct KeyPress {
        KeyDownEvent event;
        bool* isSwallowed;
    };

    void windowComes();
    void windowGoes();
    void keyboardHasGoneTo(const QWindow* window);
    bool holdsBack(const QKeyEvent& press);
    std::optional<Rect> pixelsOf(const QScreen& screen);

    RunLoop& runLoop_;
    Displays& displays_;
    X11Connection* connection_;
    const Typing* typing_;
    int shown_ = 0;
    MonotonicTime shownSince_;    ///< the first of those that are shown
    Window* keyWindow_ = nullptr; ///< the last one that was made key, while it is shown
    int timesTakenBack_ = 0;
    xcb_window_t focusBefore_ = XCB_NONE;
    CallbackList<KeyPress> monitors_;
    std::unique_ptr<KeyFilter> filter_;
};

} // namespace nocta
