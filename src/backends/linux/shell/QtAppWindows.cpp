#include "backends/linux/shell/QtAppWindows.h"

#include <QApplication>
#include <QCloseEvent>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>

#include <utility>

namespace nocta {

namespace {

Qt::WindowFlags flagsOf(const AppWindows::Style& style) {
    constexpr std::uint32_t titled = 1;
    constexpr std::uint32_t closable = 2;
    constexpr std::uint32_t miniaturizable = 4;
    constexpr AppWindows::WindowLevel normalLevel = 0;
    const auto isMiniaturizable = (style.styleMask & miniaturizable) != 0;
    // A dialog is what a window manager gives nothing but a title and a way to close it.
    Qt::WindowFlags flags = (isMiniaturizable ? Qt::Window : Qt::Dialog) | Qt::CustomizeWindowHint;
    flags.setFlag(Qt::WindowTitleHint, (style.styleMask & titled) != 0);
    flags.setFlag(Qt::WindowCloseButtonHint, (style.styleMask & closable) != 0);
    flags.setFlag(Qt::WindowMinimizeButtonHint, isMiniaturizable);
    flags.setFlag(Qt::WindowStaysOnTopHint, style.level > normalLevel);
    return flags;
}

/// Tells of its closing by the user, once it has happened.
class ClosingWidget final : public QWidget {
public:
    explicit ClosingWidget(std::function<void()> onClose) : onClose_(std::move(onClose)) {}

protected:
    void closeEvent(QCloseEvent* event) override {
        QWidget::closeEvent(event);
        QTimer::singleShot(0, this, onClose_);
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
        layout->addWidget(view);
        layout->setSizeConstraint(QLayout::SetFixedSize);
        view->setMinimumSize(
            view->minimumSize().expandedTo(QSize(qRound(style.width), qRound(style.height))));
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    void makeKeyAndOrderFront() override {
        if (auto* const popup = QApplication::activePopupWidget()) {
            popup->close(); // a transient popover gives way
        }
        if (!widget_.isVisible()) {
            center();
        }
        widget_.showNormal();
        widget_.raise();
        widget_.activateWindow();
    }

private:
    void center() {
        widget_.adjustSize();
        if (const auto* const screen = widget_.screen()) {
            auto frame = widget_.rect();
            frame.moveCenter(screen->availableGeometry().center());
            widget_.move(frame.topLeft());
        }
    }

    ClosingWidget widget_;
    std::unique_ptr<View> content_; // goes before the window that shows it
};

std::unique_ptr<AppWindow> QtAppWindows::makeWindow(const Style& style,
                                                    std::unique_ptr<View> content,
                                                    std::function<void()> onClose) {
    return std::make_unique<Window>(style, std::move(content), std::move(onClose));
}

} // namespace nocta
