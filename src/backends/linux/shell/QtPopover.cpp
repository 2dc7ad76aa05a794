#include "backends/linux/shell/QtPopover.h"

#include "backends/linux/shell/QtStatusBar.h"

#include <QCursor>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace nocta {

namespace {

constexpr int gap = 4; ///< points between the item and the popover

/// Beside the anchor on the side that faces into the screen, centred on it, wholly on screen.
QPoint placed(const QSize& size, const QRect& anchor, const QRect& available) {
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
        setAttribute(Qt::WA_NoMouseReplay); // a click on the item closes, and must not open again
        auto* const layout = new QVBoxLayout(this);
        layout->setContentsMargins(1, 1, 1, 1); // the border
    }

    void setView(std::unique_ptr<View> view) {
        view_ = std::move(view);
        if (view_ != nullptr) {
            layout()->addWidget(static_cast<QWidget*>(view_->nativeView()));
        }
    }

protected:
    void hideEvent(QHideEvent* event) override {
        QWidget::hideEvent(event);
        // Later, as it may be the content's own click that closes.
        QTimer::singleShot(0, this, [this] {
            if (!isVisible()) {
                setView(nullptr);
            }
        });
    }

    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.fillRect(rect(), palette().window());
        painter.setPen(palette().mid().color());
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }

private:
    std::unique_ptr<View> view_;
};

QtPopover::QtPopover() : window_(std::make_unique<Window>()) {}

QtPopover::~QtPopover() = default;

void QtPopover::setContentSize(double width, double height) {
    window_->setFixedSize(qRound(width), qRound(height));
}

void QtPopover::setBehavior(PopoverBehavior behavior) {
    const auto type = behavior == PopoverBehavior::transient ? Qt::Popup : Qt::Tool;
    window_->setWindowFlags(type | Qt::FramelessWindowHint);
}

void QtPopover::setContentView(std::unique_ptr<View> view) {
    window_->setView(std::move(view));
}

void QtPopover::show(StatusItem& relativeTo) {
    auto anchor = static_cast<QtStatusItem&>(relativeTo).geometry();
    if (anchor.isEmpty()) {
        anchor = QRect(QCursor::pos(), QSize(1, 1));
    }
    const auto* screen = QGuiApplication::screenAt(anchor.center());
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    if (screen != nullptr) {
        window_->move(placed(window_->size(), anchor, screen->availableGeometry()));
    }
    window_->show();
    window_->activateWindow();
}

void QtPopover::close() {
    window_->close();
}

bool QtPopover::isShown() const {
    return window_->isVisible();
}

} // namespace nocta
