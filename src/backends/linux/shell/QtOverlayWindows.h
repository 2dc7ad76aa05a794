#pragma once

#include "backends/linux/shell/LayerShell.h"
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

/// Overlay windows in Qt. On X11 they bypass the window manager, so that they cover their screens
/// exactly, on every workspace and above full-screen windows, with or without a window manager.
/// They take the keyboard focus themselves, and take it back if a window opens below them, so that
/// the user does not type into a hidden window. When the last overlay window is hidden, this class
/// returns the focus to the window that had it before. Whatever the user was still typing when the
/// overlay windows appeared is discarded. Without a compositor, the windows are dark and opaque.
///
/// On Wayland, if the compositor offers layers, the windows are in the topmost layer, and the
/// compositor gives the keyboard focus to the overlay window on the focused screen. On other
/// compositors, each overlay window is an ordinary full-screen window.
class QtOverlayWindows final : public OverlayWindows {
public:
    /// Returns the frame of the screen that has the keyboard focus, or nullopt if that screen is
    /// not known.
    using FocusedScreen = std::function<std::optional<Rect>()>;

    /// `connection` and `typing` are null without an X server. Without `typing`, only the
    /// auto-repeat of a held key counts as earlier typing. Without `focusedScreen`, the newest
    /// window gets the keyboard focus.
    QtOverlayWindows(RunLoop& runLoop, Displays& displays, const LayerShell& layerShell,
                     X11Connection* connection, const Typing* typing,
                     FocusedScreen focusedScreen = {});
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

    void windowComes(Window& window);
    void windowGoes(Window& window);
    void takeKeyboard();
    void keyboardHasGoneTo(const QWindow* window);
    bool holdsBack(const QKeyEvent& press);
    std::optional<Rect> pixelsOf(const QScreen& screen);

    RunLoop& runLoop_;
    Displays& displays_;
    const LayerShell& layerShell_;
    X11Connection* connection_;
    const Typing* typing_;
    FocusedScreen focusedScreen_;
    std::vector<Window*> shown_; ///< in the order in which they were made key
    MonotonicTime shownSince_;   ///< when the first of the shown windows appeared
    int timesTakenBack_ = 0;
    std::optional<Rect> focusedBefore_; ///< the frame of the screen that had the focus
    xcb_window_t focusBefore_ = XCB_NONE;
    CallbackList<KeyPress> monitors_;
    std::unique_ptr<KeyFilter> filter_;
};

} // namespace nocta
