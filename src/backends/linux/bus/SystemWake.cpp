#include "backends/linux/bus/SystemWake.h"

#include "backends/linux/bus/MessageBus.h"

namespace nocta {

SystemWake::SystemWake() {
    signals_.woken = [this] { observers_.call(); };
    bus_ = MessageBus::system().whenConnected([this](QDBusConnection bus) {
        // The signal is accepted from any sender: given a service name, Qt would block while it
        // asks the bus which process owns the name. The bus lets only system services send this
        // signal.
        bus.connect(QString(), QStringLiteral("/org/freedesktop/login1"),
                    QStringLiteral("org.freedesktop.login1.Manager"),
                    QStringLiteral("PrepareForSleep"), &signals_, SLOT(prepareForSleep(bool)));
    });
}

} // namespace nocta
