#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <functional>

namespace nocta {

/// Takes the signals of the notification service. Apart from its owner, as a D-Bus signal with
/// arguments only reaches a class that the toolkit has generated code for.
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
