#include "backends/linux/shell/QtPopover.h"

#include "backends/linux/shell/QtStatusBar.h"
#include "backends/linux/shell/ScreenSpace.h"

#include <QCursor>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace nocta {

namespace {

// In points.
constexpr int gap = 4; // between the popover and the item, and the edges of the screen
constexpr int borderWidth = 1;
constexpr qreal cornerRadius = 12;
constexpr int shadowReach = 16;
constexpr int shadowDrop = 4;

constexpr float borderOpacity = 0.16F;
constexpr int shadowLayerAlpha = 8; // of 255

/// Returns the position next to the anchor, on the side that faces the inside of the screen,
/// centered on the anchor and fully on the screen.
QPoint placed(const QSize& size, const QRect& anchor, const QRect& screen) {
    const auto available = screen.adjusted(gap, gap, -gap, -gap);
    const auto below = anchor.center().y() < available.center().y();
    const auto x = anchor.center().x() - size.width() / 2;
    const auto y = below ? anchor.bottom() + 1 + gap : anchor.top() - gap - size.height();
    const auto within = [](int value, int low, int high) {
        return std::max(low, std::min(value, high));
    };
    return {within(x, available.left(), available.right() + 1 - size.width()),
            within(y, available.top(), available.bottom() + 1 - size.height())};
}

} // namespace

class QtPopover::Window final : public QWidget {
public:
    Window() {
        setWindowTitle(QStringLiteral("Nocta"));
        setAttribute(Qt::WA_NoMouseReplay); // a click on the item must close it, not reopen it
        setAttribute(Qt::WA_TranslucentBackground);
        new QVBoxLayout(this);
        dropView_.setSingleShot(true);
        connect(&dropView_, &QTimer::timeout, this, [this] {
            if (!isVisible()) {
                setView(nullptr);
                onHidden();
            }
        });
    }

    QSize contentSize;
    std::function<void()> onHidden;

    void setView(std::unique_ptr<View> view) {
        dropView_.stop(); // in a layer, a window that is about to appear is not visible yet
        view_ = std::move(view);
        if (view_ != nullptr) {
            layout()->addWidget(static_cast<QWidget*>(view_->nativeView()));
        }
    }

    /// Resizes the window to the size that the content needs, but at least to `contentSize`.
    void fit(bool isComposited) {
        shadowWidth_ = isComposited ? shadowReach : 0;
        layout()->setContentsMargins(shadowWidth_, shadowWidth_, shadowWidth_, shadowWidth_);
        auto body = contentSize;
        if (view_ != nullptr) {
            const auto& content = *static_cast<QWidget*>(view_->nativeView());
            body = content.minimumSizeHint().expandedTo(body);
            body.setHeight(std::max(body.height(), content.heightForWidth(body.width())));
        }
        setFixedSize(body + QSize(2 * shadowWidth_, 2 * shadowWidth_));
    }

    /// Moves the window next to the anchor.
    void place(const QRect& anchor, const QRect& available) {
        move(placed(body().size().toSize(), anchor, available) -
             QPoint(shadowWidth_, shadowWidth_));
    }

    void focusFirstControl() {
        if (focusWidget() == nullptr) {
            focusNextChild();
        }
    }

protected:
    void hideEvent(QHideEvent* event) override {
        QWidget::hideEvent(event);
        dropView_.start(0); // delayed, because a click in the content may have closed the popover
    }

    bool event(QEvent* event) override {
        // Qt closes its popups itself.
        if (event->type() == QEvent::WindowDeactivate && windowType() != Qt::Popup) {
            QTimer::singleShot(0, this, [this] { close(); });
        }
        return QWidget::event(event);
    }

    void keyPressEvent(QKeyEvent* event) override {
        if (event->matches(QKeySequence::Cancel)) {
            close();
        }
        QWidget::keyPressEvent(event);
    }

    /// A click on the shadow counts as a click outside.
    void mousePressEvent(QMouseEvent* event) override {
        if (body().contains(event->position())) {
            QWidget::mousePressEvent(event);
        } else {
            close();
        }
    }

    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        auto border = palette().color(QPalette::WindowText);
        border.setAlphaF(borderOpacity);
        if (shadowWidth_ == 0) {
            painter.fillRect(rect(), palette().window());
            painter.setPen(border);
            painter.drawRect(rect().adjusted(0, 0, -1, -1));
            return;
        }
        painter.setRenderHint(QPainter::Antialiasing);
        paintShadow(painter);
        painter.setPen(QPen(border, borderWidth));
        painter.setBrush(palette().window());
        constexpr auto half = borderWidth / 2.0;
        painter.drawRoundedRect(body().adjusted(half, half, -half, -half), cornerRadius,
                                cornerRadius);
    }

private:
    QRectF body() const {
        return QRectF(rect()).adjusted(shadowWidth_, shadowWidth_, -shadowWidth_, -shadowWidth_);
    }

    /// Draws rounded rectangles on top of each other, each slightly smaller than the previous one.
    void paintShadow(QPainter& painter) const {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 0, 0, shadowLayerAlpha));
        for (int reach = shadowReach - shadowDrop; reach > 0; reach -= 2) {
            painter.drawRoundedRect(
                body().adjusted(-reach, shadowDrop - reach, reach, shadowDrop + reach),
                cornerRadius + reach, cornerRadius + reach);
        }
    }

    std::unique_ptr<View> view_;
    QTimer dropView_;
    int shadowWidth_ = 0;
};

QtPopover::QtPopover(const LayerShell& layerShell, X11Connection* connection, bool seesPointer)
    : layerShell_(layerShell), connection_(connection), seesPointer_(seesPointer),
      window_(std::make_unique<Window>()) {
    window_->onHidden = [this] { inCorner_.reset(); };
}

QtPopover::~QtPopover() = default;

void QtPopover::setContentSize(double width, double height) {
    window_->contentSize = QSize(qRound(width), qRound(height));
}

void QtPopover::setBehavior(PopoverBehavior behavior) {
    // On Wayland a popup must belong to a window that the user has just clicked or typed in. On
    // Xwayland a popup would not notice clicks on the windows of Wayland clients.
    const auto isPopup = behavior == PopoverBehavior::transient && seesPointer_;
    Qt::WindowFlags flags = isPopup ? Qt::Popup : Qt::Tool;
    flags |= Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint;
    flags.setFlag(Qt::BypassWindowManagerHint, layerShell_.isAvailable());
    window_->setWindowFlags(flags);
}

void QtPopover::setContentView(std::unique_ptr<View> view) {
    window_->setView(std::move(view));
}

void QtPopover::show(StatusItem& relativeTo) {
    // Every Wayland session has a compositor.
    window_->fit(connection_ == nullptr || connection_->isComposited());
    if (layerShell_.isAvailable()) {
        inCorner_.emplace(layerShell_, *window_, gap - shadowReach, [this] { close(); });
        window_->focusFirstControl();
        return;
    }
    auto anchor = static_cast<QtStatusItem&>(relativeTo).geometry();
    const auto* screen = QGuiApplication::primaryScreen();
    if (anchor.isEmpty() && !seesPointer_ && screen != nullptr) {
        anchor = QRect(screen->availableGeometry().topRight(), QSize(1, 1));
    } else if (anchor.isEmpty()) {
        anchor = QRect(QCursor::pos(), QSize(1, 1));
    }
    if (const auto* const anchorScreen = QGuiApplication::screenAt(anchor.center())) {
        screen = anchorScreen;
    }
    if (screen != nullptr) {
        window_->place(anchor, spaceOn(*screen, connection_));
    }
    window_->show();
    window_->activateWindow();
    window_->focusFirstControl();
}

void QtPopover::close() {
    inCorner_.reset();
    window_->close();
}

bool QtPopover::isShown() const {
    return inCorner_.has_value() || window_->isVisible();
}

} // namespace nocta
