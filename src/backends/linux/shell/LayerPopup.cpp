#include "backends/linux/shell/LayerPopup.h"

#include <QEnterEvent>
#include <QGuiApplication>
#include <QPointer>
#include <QScreen>

#include <algorithm>
#include <chrono>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr auto maxPaintTime = 1s;
/// How long the compositor may take to report which of the new windows contains the pointer.
constexpr auto maxPointerTime = 100ms;
constexpr Qt::Edges allEdges = Qt::TopEdge | Qt::BottomEdge | Qt::LeftEdge | Qt::RightEdge;
constexpr int tipMargin = 6; // points
constexpr Qt::Edges usualCorner = Qt::TopEdge | Qt::RightEdge;

Qt::Edges nearestCorner(QPointF position, const QSize& size) {
    return (position.y() * 2 < size.height() ? Qt::TopEdge : Qt::BottomEdge) |
           (position.x() * 2 < size.width() ? Qt::LeftEdge : Qt::RightEdge);
}

} // namespace

/// A transparent window over a whole screen.
class LayerPopup::Surroundings final : public QWidget {
public:
    Surroundings(LayerPopup& popup, QScreen* screen) : popup_(popup), screen_(screen) {
        setWindowFlags(Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_ShowWithoutActivating);
        surface_.emplace(popup.shell_, *this, screen,
                         LayerSurface::Style{.layer = LayerSurface::Layer::top, .edges = allEdges});
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override { popup_.surroundingsArePainted(); }
    void enterEvent(QEnterEvent* event) override {
        popup_.open(screen_, nearestCorner(event->position(), size()));
    }
    void mousePressEvent(QMouseEvent* /*event*/) override { popup_.dismissLater(); }

private:
    LayerPopup& popup_;
    QPointer<QScreen> screen_; ///< null after the screen is removed
    std::optional<LayerSurface> surface_;
};

LayerPopup::LayerPopup(const LayerShell& shell, QWidget& widget, int margin,
                       std::function<void()> dismiss)
    : shell_(shell), widget_(widget), margin_(margin), dismiss_(std::move(dismiss)), tip_(&widget) {
    tip_.hide();
    tip_.setWordWrap(true);
    tip_.setMargin(tipMargin);
    tip_.setAutoFillBackground(true);
    tip_.setBackgroundRole(QPalette::ToolTipBase);
    tip_.setForegroundRole(QPalette::ToolTipText);
    tip_.setFrameShape(QFrame::Box);
    tip_.setAttribute(Qt::WA_TransparentForMouseEvents);
    qApp->installEventFilter(this);
    for (auto* const screen : QGuiApplication::screens()) {
        surroundings_.push_back(std::make_unique<Surroundings>(*this, screen));
    }
    connect(&withoutPointer_, &QTimer::timeout, this, [this] {
        // Deferred until the pending events have been handled: when the mouse pointer first enters
        // a window, Qt takes time to load its cursors.
        QTimer::singleShot(0, this, [this] { open(nullptr, usualCorner); });
    });
    withoutPointer_.setSingleShot(true);
    withoutPointer_.start(maxPaintTime);
}

LayerPopup::~LayerPopup() = default;

void LayerPopup::surroundingsArePainted() {
    if (!surface_) {
        withoutPointer_.start(maxPointerTime);
    }
}

void LayerPopup::open(const QScreen* screen, Qt::Edges corner) {
    if (surface_) {
        return;
    }
    withoutPointer_.stop();
    // Compositors differ in which surface of one layer is on top. Some give a surface with
    // on-demand keyboard focus no focus before a click, so Escape would not close it.
    surface_.emplace(shell_, widget_, screen,
                     LayerSurface::Style{.layer = LayerSurface::Layer::overlay,
                                         .takesKeyboard = true,
                                         .edges = corner,
                                         .margin = margin_,
                                         .avoidsPanels = true});
    surface_->onClosed = [this] { dismissLater(); };
}

bool LayerPopup::eventFilter(QObject* watched, QEvent* event) {
    const auto* const control = qobject_cast<QWidget*>(watched);
    if (control == nullptr || control->window() != &widget_) {
        return false;
    }
    switch (event->type()) {
    case QEvent::ToolTip:
        if (!control->toolTip().isEmpty()) {
            showTip(*control);
        }
        return !control->toolTip().isEmpty();
    case QEvent::Leave:
    case QEvent::MouseButtonPress:
    case QEvent::KeyPress:
        tip_.hide();
        return false;
    default:
        return false;
    }
}

/// Shows the tool tip below the control, or above it if there is not enough room below.
void LayerPopup::showTip(const QWidget& control) {
    tip_.setText(control.toolTip());
    const auto space = widget_.contentsRect();
    tip_.setFixedWidth(std::min(tip_.sizeHint().width(), space.width() - 2 * tipMargin));
    tip_.setFixedHeight(tip_.heightForWidth(tip_.width()));
    const QRect place(control.mapTo(&widget_, QPoint(0, 0)), control.size());
    const auto below = place.bottom() + tipMargin;
    const auto fitsBelow = below + tip_.height() <= space.bottom();
    tip_.move(std::min(place.left(), space.right() - tip_.width() - tipMargin),
              fitsBelow ? below : place.top() - tipMargin - tip_.height());
    tip_.raise();
    tip_.show();
}

/// Dismisses the popup later, because dismissing it destroys the object that is handling the event.
void LayerPopup::dismissLater() {
    QTimer::singleShot(0, this, [this] { dismiss_(); });
}

} // namespace nocta
