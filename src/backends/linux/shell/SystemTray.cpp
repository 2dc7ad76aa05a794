#include "backends/linux/shell/SystemTray.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include <string>
#include <utility>

namespace nocta {

namespace {
const auto watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto watcherPath = QStringLiteral("/StatusNotifierWatcher");
} // namespace

SystemTray::SystemTray(X11Connection* connection) : connection_(connection) {
    auto bus = QDBusConnection::sessionBus();
    if (bus.isConnected()) {
        watcher_.setConnection(bus);
        watcher_.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
        watcher_.addWatchedService(watcherService);
        question_.setSingleShot(true);
        QObject::connect(&question_, &QTimer::timeout, [this] { askForHost(); });
        QObject::connect(&watcher_, &QDBusServiceWatcher::serviceRegistered,
                         [this] { question_.start(); });
        bus.connect(watcherService, watcherPath, watcherService,
                    QStringLiteral("StatusNotifierHostRegistered"), &question_, SLOT(start()));
        askForHost();
    }
    if (connection_ != nullptr) {
        // A tray that comes announces itself to who has the root window's structure events.
        connection_->selectRootEvents(XCB_EVENT_MASK_STRUCTURE_NOTIFY);
        selection_ =
            connection_->atom("_NET_SYSTEM_TRAY_S" + std::to_string(connection_->screenNumber()));
        events_ = connection_->observeEvents([this](const X11Connection::Event& event) {
            if ((event.response_type & 0x7f) == XCB_CLIENT_MESSAGE) {
                lookForXEmbedTray();
            }
        });
        lookForXEmbedTray();
    }
}

void SystemTray::whenAvailable(std::function<void()> action) {
    if (isAvailable_) {
        action();
    } else {
        action_ = std::move(action);
    }
}

void SystemTray::askForHost() {
    if (isAvailable_) {
        return;
    }
    auto call = QDBusMessage::createMethodCall(watcherService, watcherPath,
                                               QStringLiteral("org.freedesktop.DBus.Properties"),
                                               QStringLiteral("Get"));
    call << watcherService << QStringLiteral("IsStatusNotifierHostRegistered");
    call.setAutoStartService(false);
    auto* const answer =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), &question_);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, [this, answer] {
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        answer->deleteLater();
        if (reply.isValid() && reply.value().variant().toBool()) {
            becomeAvailable();
        }
    });
}

void SystemTray::lookForXEmbedTray() {
    if (connection_->isOwned(selection_)) {
        becomeAvailable();
    }
}

void SystemTray::becomeAvailable() {
    events_.cancel();
    if (!std::exchange(isAvailable_, true) && action_) {
        std::exchange(action_, nullptr)();
    }
}

} // namespace nocta
