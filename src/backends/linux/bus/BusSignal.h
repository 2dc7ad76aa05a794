#pragma once

#include <QDBusConnection>
#include <QString>
#include <QTimer>

#include <functional>
#include <utility>

namespace nocta {

/// Receives a D-Bus signal whose arguments do not matter, once for all that arrive in one turn. It
/// comes from any sender: given a service's name, Qt would block while it asks the bus who owns the
/// name. So `received` should only ask the service.
class BusSignal final : public QTimer { // has a slot that needs no code from moc
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
