#include "backends/linux/bus/SystemWake.h"

#include "backends/linux/bus/MessageBus.h"

namespace nocta {

SystemWake::SystemWake() {
    signals_.woken = [this] { observers_.call(); };
    bus_ = MessageBus::system().whenConnected([this](QDBusConnection bus) {
        // From whoever sends it: the toolkit would wait for the bus to tell who owns a name, and
        // the bus lets only the system's services send this.
        bus.connect(QString(), QStringLiteral("/org/freedesktop/login1"),
                    QStringLiteral("org.freedesktop.login1.Manager"),
                    QStringLiteral("PrepareForSleep"), &signals_, SLOT(prepareForSleep(bool)));
    });
}

} // namespace nocta
