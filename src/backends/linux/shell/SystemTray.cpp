#include "backends/linux/shell/SystemTray.h"

#include "backends/linux/bus/AsyncCall.h"
#include "backends/linux/bus/MessageBus.h"
#include "backends/linux/shell/QtOnX11.h"

#include <QDBusError>
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
    watcher_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    watcher_.addWatchedService(watcherService);
    QObject::connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged,
                     [this] { hostRegistered_.start(); });
    sessionBus_ =
        MessageBus::session().whenConnected([this](const QDBusConnection& bus) { follow(bus); });
    if (connection_ != nullptr) {
        // A new tray announces itself to clients that select the root window's structure events.
        connection_->selectRootEvents(XCB_EVENT_MASK_STRUCTURE_NOTIFY);
        selection_ =
            connection_->atom("_NET_SYSTEM_TRAY_S" + std::to_string(connection_->screenNumber()));
        events_ = connection_->observeEvents([this](const X11Connection::Event& event) {
            if ((event.response_type & 0x7f) == XCB_CLIENT_MESSAGE) {
                // Qt recreates an existing icon when it detects the tray, and a tray may not handle
                // the old icon correctly.
                afterEventsOfQt(watcher_, [this] { lookForXEmbedTray(); });
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

void SystemTray::follow(const QDBusConnection& bus) {
    watcher_.setConnection(bus);
    hostRegistered_.connect(bus, watcherPath, watcherService,
                            QStringLiteral("StatusNotifierHostRegistered"));
    askForHost();
}

void SystemTray::askForHost() {
    if (isAvailable_) {
        return;
    }
    isWatcherMute_ = true;
    // The two calls that Qt makes, in Qt's order.
    ask(QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect"), {},
        [this](const QDBusMessage& /*description*/) {
            ask(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
                {watcherService, QStringLiteral("IsStatusNotifierHostRegistered")},
                [this](const QDBusMessage& answer) { answered(answer); });
        });
}

void SystemTray::ask(const QString& interface, const QString& method, const QVariantList& arguments,
                     std::function<void(const QDBusMessage&)> answered) {
    auto call = QDBusMessage::createMethodCall(watcherService, watcherPath, interface, method);
    call.setArguments(arguments);
    call.setAutoStartService(false);
    callAsync(sessionBus(), call, &hostRegistered_, std::move(answered), noTimeout);
}

void SystemTray::answered(const QDBusMessage& answer) {
    const QDBusPendingReply<QDBusVariant> reply(answer);
    // Any error but NoReply comes from the bus itself: there is no watcher.
    isWatcherMute_ = reply.isError() && reply.error().type() == QDBusError::NoReply;
    if ((reply.isValid() && reply.value().variant().toBool()) ||
        (hasXEmbedTray_ && !isWatcherMute_)) {
        becomeAvailable();
    }
}

void SystemTray::lookForXEmbedTray() {
    hasXEmbedTray_ = connection_->isOwned(selection_);
    if (hasXEmbedTray_ && !isWatcherMute_) {
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
