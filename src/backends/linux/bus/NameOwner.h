#pragma once

#include <QDBusMessage>
#include <QString>

namespace nocta {

/// Asks the bus which process owns a name now; the answer is the unique name of that process. A
/// reply from the process does not show this, because replies have no sender from Qt 6.8 on.
inline QDBusMessage nameOwnerQuestion(const QString& name) {
    const auto bus = QStringLiteral("org.freedesktop.DBus");
    return QDBusMessage::createMethodCall(bus, QStringLiteral("/org/freedesktop/DBus"), bus,
                                          QStringLiteral("GetNameOwner"))
           << name;
}

} // namespace nocta
