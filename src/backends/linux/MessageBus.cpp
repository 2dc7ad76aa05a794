#include "backends/linux/MessageBus.h"

#include <QString>

namespace nocta {

namespace {

QDBusConnection connectionTo(QDBusConnection::BusType bus, const QString& name) {
    if (QDBusConnection connected(name); connected.isConnected()) {
        return connected;
    }
    QDBusConnection::disconnectFromBus(name);
    return QDBusConnection::connectToBus(bus, name);
}

} // namespace

QDBusConnection systemBus() {
    return connectionTo(QDBusConnection::SystemBus, QStringLiteral("nocta-system"));
}

QDBusConnection sessionBus() {
    return connectionTo(QDBusConnection::SessionBus, QStringLiteral("nocta-session"));
}

} // namespace nocta
