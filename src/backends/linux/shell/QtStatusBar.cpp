#include "backends/linux/shell/QtStatusBar.h"

#include "backends/linux/shell/SymbolIcon.h"

#include <chrono>
#include <utility>

namespace nocta {

namespace {
using namespace std::chrono_literals;
constexpr auto panelStartTime = 2s;
} // namespace

QtStatusItem::QtStatusItem(RunLoop& runLoop) {
    QObject::connect(&icon_, &QSystemTrayIcon::activated,
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason != QSystemTrayIcon::MiddleClick && action_) {
                             action_();
                         }
                     });
    if (!QSystemTrayIcon::isSystemTrayAvailable()) {
        trayTimeout_.start(runLoop, panelStartTime, Repeat::no, [this] {
            if (!QSystemTrayIcon::isSystemTrayAvailable() && action_) {
                action_();
            }
        });
    }
}

void QtStatusItem::setImage(std::string_view symbolName,
                            std::string_view accessibilityDescription) {
    icon_.setIcon(symbolIcon(symbolName));
    icon_.setToolTip(QString::fromUtf8(accessibilityDescription.data(),
                                       static_cast<qsizetype>(accessibilityDescription.size())));
    icon_.show();
}

void QtStatusItem::setAction(std::function<void()> action) {
    action_ = std::move(action);
}

} // namespace nocta
