#include "backends/linux/bus/PortalSettings.h"

#include "backends/linux/bus/AsyncCall.h"
#include "backends/linux/bus/MessageBus.h"

#include <QDBusArgument>
#include <QDBusMessage>

#include <utility>

namespace nocta {

namespace {
const auto service = QStringLiteral("org.freedesktop.portal.Desktop");
const auto path = QStringLiteral("/org/freedesktop/portal/desktop");
const auto interface = QStringLiteral("org.freedesktop.portal.Settings");
} // namespace

PortalSettings::PortalSettings(QStringList namespaces, std::function<void(Settings)> changed)
    : namespaces_(std::move(namespaces)), changed_(std::move(changed)) {
    portal_.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    portal_.addWatchedService(service);
    QObject::connect(&portal_, &QDBusServiceWatcher::serviceRegistered,
                     [this] { changes_.start(); });
    sessionBus_ =
        MessageBus::session().whenConnected([this](const QDBusConnection& bus) { follow(bus); });
}

void PortalSettings::follow(const QDBusConnection& bus) {
    portal_.setConnection(bus);
    changes_.connect(bus, path, interface, QStringLiteral("SettingChanged"));
    read();
}

void PortalSettings::read() {
    auto call = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("ReadAll"));
    call << namespaces_;
    callAsync(sessionBus(), call, &changes_, [this](const QDBusMessage& reply) {
        if (reply.signature() != QStringLiteral("a{sa{sv}}")) {
            return; // an error, or a reply of the wrong type
        }
        Settings settings;
        qvariant_cast<QDBusArgument>(reply.arguments().constFirst()) >> settings;
        changed_(std::move(settings));
    });
}

} // namespace nocta
