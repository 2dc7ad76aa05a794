#pragma once

#include <QDBusMessage>
#include <QString>

namespace nocta {

/// The question to the bus which process owns a name now; the answer is its unique name. An answer
/// of the process itself does not tell: from Qt 6.8 on a reply has no sender.
inline QDBusMessage nameOwnerQuestion(const QString& name) {
    const auto bus = QStringLiteral("org.freedesktop.DBus");
    return QDBusMessage::createMethodCall(bus, QStringLiteral("/org/freedesktop/DBus"), bus,
                                          QStringLiteral("GetNameOwner"))
           << name;
}

} // namespace nocta
