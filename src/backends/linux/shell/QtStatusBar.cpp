#include "backends/linux/shell/QtStatusBar.h"

#include "backends/linux/shell/SymbolIcon.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMenu>
#include <QPointer>

#include <utility>

namespace nocta {

namespace {
QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}
} // namespace

QtStatusItem::QtStatusItem(SystemTray& tray) {
    QCoreApplication::instance()->installEventFilter(this);
    tray.whenAvailable([item = QPointer(this)] {
        if (item != nullptr) {
            item->makeIcon();
        }
    });
}

void QtStatusItem::setImage(std::string_view symbolName,
                            std::string_view accessibilityDescription) {
    symbolName_ = text(symbolName);
    description_ = text(accessibilityDescription);
    draw();
}

void QtStatusItem::setAction(std::function<void()> action) {
    action_ = std::move(action);
}

void QtStatusItem::setMenu(std::unique_ptr<View> menu) {
    menu_ = std::move(menu);
    attachMenu();
}

bool QtStatusItem::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange &&
        watched == QCoreApplication::instance()) {
        draw();
    }
    return QObject::eventFilter(watched, event);
}

void QtStatusItem::makeIcon() {
    icon_.emplace();
    connect(&*icon_, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                // A double click has already been reported as a click.
                if (reason == QSystemTrayIcon::Trigger && action_) {
                    action_();
                }
            });
    attachMenu();
    draw();
}

void QtStatusItem::attachMenu() {
    if (icon_ && menu_ != nullptr) {
        auto* const menu = static_cast<QWidget*>(menu_->nativeView());
        icon_->setContextMenu(qobject_cast<QMenu*>(menu));
    }
}

void QtStatusItem::draw() {
    if (icon_ && !symbolName_.isEmpty()) {
        icon_->setIcon(symbolIcon(symbolName_));
        icon_->setToolTip(description_);
        icon_->show();
    }
}

} // namespace nocta
