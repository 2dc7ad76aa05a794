#pragma once

#include <QDBusConnection>

namespace nocta {

/// Nocta's connection to the system bus, made when it is first asked for and made anew when the bus
/// has gone and come back. The toolkit's own one never comes back.
QDBusConnection systemBus();

} // namespace nocta
