#pragma once

#include <QDBusConnection>

namespace nocta {

// Nocta's own connections to the message buses. Each is made when it is first asked for, and made
// anew when its bus has gone and come back. The toolkit's own never come back.

QDBusConnection systemBus();
QDBusConnection sessionBus();

} // namespace nocta
