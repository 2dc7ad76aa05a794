#pragma once

#include <QDBusConnection>
#include <QString>
#include <QTimer>

#include <functional>
#include <utility>

namespace nocta {

/// Receives a D-Bus signal whose arguments do not matter. Signals that arrive in the same turn of
/// the event loop cause one call. Signals are accepted from any sender: given a service name, Qt
/// would block while it asks the bus which process owns the name. So `received` should only query
/// the service.
class BusSignal final : public QTimer { // a base with a slot, so that moc is not needed
public:
    explicit BusSignal(std::function<void()> received) {
        setSingleShot(true);
        callOnTimeout(std::move(received));
    }

    void connect(QDBusConnection bus, const QString& path, const QString& interface,
                 const QString& name) {
        bus.connect(QString(), path, interface, name, this, SLOT(start()));
    }
};

} // namespace nocta
