#include "backends/linux/shell/QtOverlayWindows.h"

#include "backends/linux/shell/QtOnX11.h"
#include "base/AlphaFade.h"

#include <QApplication>
#include <QGraphicsOpacityEffect>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

/// The maximum number of times that the focus is taken back during a break. Without a limit, two
/// programs could take the focus from each other forever.
constexpr int maxTakenBack = 10;

constexpr auto timeToGo = 100ms; // enough for all windows that fade out together

/// The key code of a key that a monitor handles; -1 for all others.
std::int64_t nativeKeyCode(int key) {
    return key == Qt::Key_Space ? spaceKeyCode : -1;
}

std::uint64_t idOf(const QScreen* screen) {
    return reinterpret_cast<std::uintptr_t>(screen);
}

bool isOnX11() {
    return QGuiApplication::platformName() == QStringLiteral("xcb");
}

QScreen* screenOf(std::uint64_t id) {
    const auto screens = QGuiApplication::screens();
    const auto found = std::ranges::find(screens, id, idOf);
    return found == screens.end() ? nullptr : *found;
}

} // namespace

class QtOverlayWindows::Window final : public OverlayWindow {
public:
    Window(QtOverlayWindows& owner, const Screen& screen, const Style& style,
           std::unique_ptr<View> content)
        : owner_(owner), frame_(screen.frame), screen_(screenOf(screen.id)),
          content_(std::move(content)) {
        constexpr std::uint32_t allWorkspaces = 1;
        constexpr WindowLevel normalLevel = 0;
        Qt::WindowFlags flags = Qt::Window | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint;
        flags.setFlag(Qt::WindowStaysOnTopHint, style.level > normalLevel);
        flags.setFlag(Qt::X11BypassWindowManagerHint,
                      (style.collectionBehavior & allWorkspaces) != 0);
        widget_.setWindowFlags(flags);
        widget_.setAttribute(Qt::WA_TranslucentBackground);
        auto* const view = static_cast<QWidget*>(content_->nativeView());
        widget_.setWindowTitle(view->accessibleName());
        auto* const layout = new QVBoxLayout(&widget_);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(view);
        if (!isOnX11()) {
            view->setGraphicsEffect(paintedAlpha_ = new QGraphicsOpacityEffect);
        }
        showAlpha();
        // Qt applies the scale factor of the window's screen to the geometry, so the screen is set
        // first.
        widget_.winId();
        if (screen_ != nullptr) {
            widget_.windowHandle()->setScreen(screen_);
        }
        widget_.setGeometry(qRound(screen.frame.x), qRound(screen.frame.y),
                            qRound(screen.frame.width), qRound(screen.frame.height));
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() override { orderOut(); }

    void makeKeyAndOrderFront() override {
        if (auto* const popup = QApplication::activePopupWidget()) {
            popup->close(); // it would keep the keyboard focus
        }
        owner_.windowComes(*this);
        if (owner_.layerShell_.isAvailable()) {
            enterLayer();
        } else if (isOnX11()) {
            widget_.show();
            coverPixels(); // must come after Qt's own placement
        } else {
            widget_.showFullScreen(); // on Wayland a program cannot place its windows
        }
        widget_.raise();
        owner_.takeKeyboard();
    }

    void orderOut() override {
        surface_.reset();
        widget_.hide();
        owner_.windowGoes(*this);
    }

    const Rect& frame() const { return frame_; }

    void takeKeyboard() {
        if (surface_) {
            surface_->setTakesKeyboard(true);
        } else {
            widget_.activateWindow();
        }
    }

    void giveUpKeyboard() {
        if (surface_) {
            surface_->setTakesKeyboard(false);
        }
    }

    void animateAlpha(double target, Duration duration, TimingFunction curve,
                      std::function<void()> completion) override {
        fade_.start(
            owner_.runLoop_, {.from = alpha_, .to = target}, duration, curve,
            [this](double alpha) {
                alpha_ = alpha;
                showAlpha();
            },
            std::move(completion));
    }

private:
    void enterLayer() {
        if (screen_ == nullptr || surface_) {
            return;
        }
        surface_.emplace(owner_.layerShell_, widget_, screen_,
                         LayerSurface::Style{.layer = LayerSurface::Layer::overlay,
                                             .edges = Qt::TopEdge | Qt::BottomEdge | Qt::LeftEdge |
                                                      Qt::RightEdge});
        surface_->onClosed = [this] { owner_.windowGoes(*this); };
    }

    void showAlpha() {
        if (paintedAlpha_ != nullptr) {
            paintedAlpha_->setOpacity(alpha_);
        } else {
            widget_.setWindowOpacity(alpha_);
            flushQt();
        }
    }

    void coverPixels() {
        if (const auto pixels = owner_.pixelsOf(*widget_.screen())) {
            const auto* const view = static_cast<QWidget*>(content_->nativeView());
            placeByPixels(*widget_.windowHandle(), *pixels,
                          view->palette().color(QPalette::Window));
        }
    }

    QtOverlayWindows& owner_;
    Rect frame_;
    QPointer<QScreen> screen_;
    double alpha_ = 0;
    QWidget widget_;
    QGraphicsOpacityEffect* paintedAlpha_ = nullptr; ///< on Wayland, where windows have no opacity
    std::optional<LayerSurface> surface_;
    std::unique_ptr<View> content_; // destroyed before the window that shows it
    AlphaFade fade_;
};

/// Filters every key press before the focused window receives it.
class QtOverlayWindows::KeyFilter final : public QObject {
public:
    explicit KeyFilter(QtOverlayWindows& owner) : owner_(owner) {
        QCoreApplication::instance()->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override {
        // Qt sends the event to the window first and then to the widget in it.
        if (event->type() != QEvent::KeyPress || !receiver->isWindowType()) {
            return false;
        }
        const auto& press = static_cast<const QKeyEvent&>(*event);
        bool isSwallowed = owner_.holdsBack(press);
        if (!isSwallowed) {
            owner_.monitors_.call(
                {.event = {nativeKeyCode(press.key())}, .isSwallowed = &isSwallowed});
        }
        return isSwallowed;
    }

private:
    QtOverlayWindows& owner_;
};

QtOverlayWindows::QtOverlayWindows(RunLoop& runLoop, Displays& displays,
                                   const LayerShell& layerShell, X11Connection* connection,
                                   const Typing* typing, FocusedScreen focusedScreen)
    : runLoop_(runLoop), displays_(displays), layerShell_(layerShell), connection_(connection),
      typing_(typing), focusedScreen_(std::move(focusedScreen)),
      filter_(std::make_unique<KeyFilter>(*this)) {
    QObject::connect(qApp, &QGuiApplication::focusWindowChanged, filter_.get(),
                     [this](const QWindow* window) { keyboardHasGoneTo(window); });
}

QtOverlayWindows::~QtOverlayWindows() = default;

std::vector<Screen> QtOverlayWindows::screens() {
    std::vector<Screen> screens;
    for (const auto* const screen : QGuiApplication::screens()) {
        const auto frame = screen->geometry();
        if (!frame.isEmpty()) { // Qt keeps an empty placeholder if there is no screen
            screens.push_back(
                {.id = idOf(screen),
                 .frame = {static_cast<double>(frame.x()), static_cast<double>(frame.y()),
                           static_cast<double>(frame.width()),
                           static_cast<double>(frame.height())}});
        }
    }
    return screens;
}

std::unique_ptr<OverlayWindow> QtOverlayWindows::makeWindow(const Screen& screen,
                                                            const Style& style,
                                                            std::unique_ptr<View> content) {
    return std::make_unique<Window>(*this, screen, style, std::move(content));
}

Subscription
QtOverlayWindows::addLocalMonitorForKeyDown(std::function<bool(const KeyDownEvent&)> handler) {
    return monitors_.add([handler = std::move(handler)](const KeyPress& press) {
        if (!*press.isSwallowed) {
            *press.isSwallowed = handler(press.event);
        }
    });
}

/// When the first window appears, remembers the screen that had the keyboard focus, and which
/// window of another program had it.
void QtOverlayWindows::windowComes(Window& window) {
    std::erase(shown_, &window);
    shown_.push_back(&window);
    if (shown_.size() > 1) {
        return;
    }
    shownSince_ = runLoop_.monotonicNow();
    timesTakenBack_ = 0;
    if (focusedScreen_ && layerShell_.isAvailable()) {
        focusedBefore_ = focusedScreen_();
    }
    if (connection_ == nullptr) {
        return;
    }
    auto* const x = connection_->get();
    const XcbReply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr));
    focusBefore_ = focus ? focus->focus : xcb_window_t{XCB_NONE};
    connection_->finishTurn();
}

/// Whether a key press continues what the user was typing when the first window appeared, or is the
/// auto-repeat of a held key.
bool QtOverlayWindows::holdsBack(const QKeyEvent& press) {
    if (shown_.empty()) {
        return false;
    }
    if (press.isAutoRepeat() || typing_ == nullptr) {
        return press.isAutoRepeat();
    }
    connection_->catchUp(); // the typing record must include this key
    return typing_->isFromBefore(shownSince_);
}

/// The pixels that one of Qt's screens covers, if they are known. Qt reports the origin of a screen
/// in pixels, but its size in points, which are rounded.
std::optional<Rect> QtOverlayWindows::pixelsOf(const QScreen& screen) {
    std::uint32_t count = 0;
    displays_.getActiveDisplayList({}, count);
    std::vector<DisplayId> ids(count);
    displays_.getActiveDisplayList(ids, count);
    for (const auto id : ids) {
        const auto bounds = displays_.displayBounds(id);
        const QRect points(qRound(bounds.x), qRound(bounds.y),
                           qRound(bounds.width / screen.devicePixelRatio()),
                           qRound(bounds.height / screen.devicePixelRatio()));
        if (points == screen.geometry()) {
            return bounds;
        }
    }
    return std::nullopt;
}

/// Qt does not track the windows of other programs, so a null window means that one of them has the
/// focus. If the compositor offers layers, it keeps the focus on the overlay window by itself.
void QtOverlayWindows::keyboardHasGoneTo(const QWindow* window) {
    if (window == nullptr && !layerShell_.isAvailable() && ++timesTakenBack_ <= maxTakenBack) {
        takeKeyboard();
    }
}

/// Gives the keyboard focus to the overlay window on the screen that had the focus before, because
/// KWin may track the focus separately for each screen. If no overlay window is on that screen, the
/// newest one gets the focus.
void QtOverlayWindows::takeKeyboard() {
    if (shown_.empty()) {
        return;
    }
    const auto preferred = std::ranges::find_if(
        shown_, [this](const Window* window) { return window->frame() == focusedBefore_; });
    auto* const chosen = preferred == shown_.end() ? shown_.back() : *preferred;
    for (auto* const window : shown_) {
        if (window != chosen) {
            window->giveUpKeyboard();
        }
    }
    chosen->takeKeyboard();
}

/// After a short delay, gives the keyboard focus to one of the remaining windows, if any. Without
/// the delay, the focus would move through the windows of all screens while they disappear, and
/// KWin would lose track of the window that had the focus before. On X11, when the last window
/// disappears, the focus returns to that window if it still exists.
void QtOverlayWindows::windowGoes(Window& window) {
    if (std::erase(shown_, &window) == 0) {
        return;
    }
    QTimer::singleShot(timeToGo, filter_.get(), [this] { takeKeyboard(); });
    if (!shown_.empty() || connection_ == nullptr || focusBefore_ == XCB_NONE) {
        return;
    }
    xcb_set_input_focus(connection_->get(), XCB_INPUT_FOCUS_POINTER_ROOT, focusBefore_,
                        XCB_CURRENT_TIME);
    connection_->finishTurn();
}

} // namespace nocta
