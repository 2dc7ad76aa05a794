#pragma once

#include <QDBusMessage>
#include <QString>

namespace nocta {

/// Builds the call that asks the bus which process currently owns a name. The answer is the unique
/// name of that process. A reply from the process itself does not reveal its unique name, because
/// since Qt 6.8, replies have no sender.
inline QDBusMessage nameOwnerQuestion(const QString& name) {
    const auto bus = QStringLiteral("org.freedesktop.DBus");
    return QDBusMessage::createMethodCall(bus, QStringLiteral("/org/freedesktop/DBus"), bus,
                                          QStringLiteral("GetNameOwner"))
           << name;
}

} // namespace nocta
