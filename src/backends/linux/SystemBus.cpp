#include "backends/linux/SystemBus.h"

#include <QString>

namespace nocta {

QDBusConnection systemBus() {
    const auto name = QStringLiteral("nocta-system");
    if (QDBusConnection connected(name); connected.isConnected()) {
        return connected;
    }
    QDBusConnection::disconnectFromBus(name);
    return QDBusConnection::connectToBus(QDBusConnection::SystemBus, name);
}

} // namespace nocta
