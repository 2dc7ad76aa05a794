#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <functional>

namespace nocta {

/// Receives the signals of the notification service. This is a separate class because Qt delivers a
/// D-Bus signal with arguments only to a class that moc has processed.
class NotificationSignals final : public QObject {
    Q_OBJECT

public:
    std::function<void(const QString& sender, unsigned int id, const QString& action)> invoked;
    std::function<void(const QString& sender, unsigned int id)> closed;

public Q_SLOTS:
    void actionInvoked(unsigned int id, const QString& action, const QDBusMessage& signal) {
        invoked(signal.service(), id, action);
    }
    void notificationClosed(unsigned int id, unsigned int /*reason*/, const QDBusMessage& signal) {
        closed(signal.service(), id);
    }
};

} // namespace nocta
