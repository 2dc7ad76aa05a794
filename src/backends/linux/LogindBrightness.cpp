#include "backends/linux/SysfsBacklight.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>

namespace nocta {

namespace {

/// A connection of our own rather than the process's one, which never comes back once it is lost.
QDBusConnection systemBus() {
    const auto name = QStringLiteral("nocta-logind");
    if (QDBusConnection connected(name); connected.isConnected()) {
        return connected;
    }
    QDBusConnection::disconnectFromBus(name);
    return QDBusConnection::connectToBus(QDBusConnection::SystemBus, name);
}

} // namespace

bool setBrightnessThroughLogind(const std::string& device, std::uint32_t level) {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"),
        QStringLiteral("/org/freedesktop/login1/session/auto"),
        QStringLiteral("org.freedesktop.login1.Session"), QStringLiteral("SetBrightness"));
    call << QStringLiteral("backlight") << QString::fromStdString(device) << level;
    return systemBus().send(call);
}

} // namespace nocta
