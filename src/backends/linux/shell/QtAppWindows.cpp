#include "backends/linux/shell/QtAppWindows.h"

#include "backends/shared/Scroller.h"

#include <QApplication>
#include <QCloseEvent>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>

#include <algorithm>
#include <string>
#include <utility>

namespace nocta {

namespace {

Qt::WindowFlags flagsOf(const AppWindows::Style& style) {
    const auto isMiniaturizable = (style.styleMask & AppWindows::miniaturizable) != 0;
    // Window managers give a dialog only a title and a close button.
    Qt::WindowFlags flags = (isMiniaturizable ? Qt::Window : Qt::Dialog) | Qt::CustomizeWindowHint;
    flags.setFlag(Qt::WindowTitleHint, (style.styleMask & AppWindows::titled) != 0);
    flags.setFlag(Qt::WindowCloseButtonHint, (style.styleMask & AppWindows::closable) != 0);
    flags.setFlag(Qt::WindowMinimizeButtonHint, isMiniaturizable);
    flags.setFlag(Qt::WindowStaysOnTopHint, style.level > AppWindows::normalLevel);
    return flags;
}

/// A widget that reports when the user has closed it.
class ClosingWidget final : public QWidget {
public:
    explicit ClosingWidget(std::function<void()> onClose) : onClose_(std::move(onClose)) {}

protected:
    void closeEvent(QCloseEvent* event) override {
        QWidget::closeEvent(event);
        QTimer::singleShot(0, this, [this] {
            if (!isVisible()) {
                const auto onClose = onClose_; // the call destroys this widget
                onClose();
            }
        });
    }

private:
    std::function<void()> onClose_;
};

} // namespace

class QtAppWindows::Window final : public AppWindow {
public:
    Window(const Style& style, std::unique_ptr<View> content, std::function<void()> onClose)
        : widget_(std::move(onClose)), content_(std::move(content)) {
        widget_.setWindowFlags(flagsOf(style));
        widget_.setWindowTitle(
            QCoreApplication::translate("Nocta", std::string(style.title).c_str()));
        auto* const view = static_cast<QWidget*>(content_->nativeView());
        auto* const layout = new QVBoxLayout(&widget_);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSizeConstraint(QLayout::SetFixedSize);
        view->setMinimumSize(
            view->minimumSize().expandedTo(QSize(qRound(style.width), qRound(style.height))));
        layout->addWidget(new Scroller(*view));
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    void makeKeyAndOrderFront() override {
        if (auto* const popup = QApplication::activePopupWidget()) {
            popup->close(); // closes a transient popover
        }
        if (!widget_.isVisible() || !isWithinReach()) {
            center();
        }
        widget_.showNormal();
        widget_.raise();
        widget_.activateWindow();
    }

    void orderFrontRegardless() override {
        widget_.setAttribute(Qt::WA_ShowWithoutActivating);
        center();
        widget_.show();
        widget_.raise();
        widget_.setAttribute(Qt::WA_ShowWithoutActivating, false);
    }

private:
    /// Returns false if the window is mostly off the screen, for example because its screen was
    /// unplugged.
    bool isWithinReach() const {
        const auto frame = widget_.frameGeometry();
        const auto seen = frame & widget_.screen()->availableGeometry();
        return seen.width() * 2 > frame.width() && seen.top() <= frame.top();
    }

    void center() {
        widget_.adjustSize();
        const auto available = widget_.screen()->availableGeometry();
        auto frame = QRect(QPoint(), widget_.frameSize());
        frame.moveCenter(available.center());
        widget_.move(std::max(frame.left(), available.left()),
                     std::max(frame.top(), available.top()));
    }

    ClosingWidget widget_;
    std::unique_ptr<View> content_; // destroyed before the window that shows it
};

std::unique_ptr<AppWindow> QtAppWindows::makeWindow(const Style& style,
                                                    std::unique_ptr<View> content,
                                                    std::function<void()> onClose) {
    return std::make_unique<Window>(style, std::move(content), std::move(onClose));
}

} // namespace nocta
