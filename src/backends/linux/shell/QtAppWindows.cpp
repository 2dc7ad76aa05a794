#include "backends/linux/shell/QtAppWindows.h"

#include "backends/linux/shell/ScreenSpace.h"
#include "backends/shared/FittingSize.h"

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

/// A window that is as large as its view needs, if the screen is large enough. It reports when the
/// user has closed it.
class FittingWindow final : public QWidget {
public:
    FittingWindow(QWidget& view, const QSize& least, X11Connection* connection,
                  std::function<void()> onClose)
        : view_(view), least_(least), connection_(connection), onClose_(std::move(onClose)) {
        auto* const layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSizeConstraint(QLayout::SetNoConstraint);
        layout->addWidget(&view);
    }

    QRect space() const { return spaceOn(*screen(), connection_); }

    void fit() {
        const auto available = space();
        const auto size = fittingSize(view_, least_, available.size());
        if (size == this->size()) {
            return; // otherwise a window that the user has moved partly off the screen would move
        }
        setFixedSize(size);
        const auto hidden = frameGeometry().bottom() - available.bottom();
        if (isVisible() && hidden > 0) {
            move(x(), std::max(available.top(), y() - hidden));
        }
    }

protected:
    bool event(QEvent* event) override {
        const auto isHandled = QWidget::event(event);
        if (event->type() == QEvent::LayoutRequest) {
            fit();
        }
        return isHandled;
    }

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
    QWidget& view_;
    QSize least_;
    X11Connection* connection_;
    std::function<void()> onClose_;
};

} // namespace

class QtAppWindows::Window final : public AppWindow {
public:
    Window(const Style& style, std::unique_ptr<View> content, X11Connection* connection,
           std::function<void()> onClose)
        : widget_(*static_cast<QWidget*>(content->nativeView()),
                  QSize(qRound(style.width), qRound(style.height)), connection, std::move(onClose)),
          content_(std::move(content)) {
        widget_.setWindowFlags(flagsOf(style));
        widget_.setWindowTitle(
            QCoreApplication::translate("Nocta", std::string(style.title).c_str()));
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
        const auto seen = frame & widget_.space();
        return seen.width() * 2 > frame.width() && seen.top() <= frame.top();
    }

    void center() {
        widget_.fit();
        const auto available = widget_.space();
        auto frame = QRect(QPoint(), widget_.frameSize());
        frame.moveCenter(available.center());
        widget_.move(std::max(frame.left(), available.left()),
                     std::max(frame.top(), available.top()));
    }

    FittingWindow widget_;
    std::unique_ptr<View> content_; // destroyed before the window that shows it
};

std::unique_ptr<AppWindow> QtAppWindows::makeWindow(const Style& style,
                                                    std::unique_ptr<View> content,
                                                    std::function<void()> onClose) {
    return std::make_unique<Window>(style, std::move(content), connection_, std::move(onClose));
}

} // namespace nocta
