#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <functional>
#include <limits>

namespace nocta {

/// For a call whose answer counts whenever it comes.
inline constexpr int noTimeout = std::numeric_limits<int>::max();

/// Calls a method over the bus without waiting. `answered` gets the reply, or the error, from the
/// event loop, unless `context` is destroyed before. `timeout` is in milliseconds; -1 is the D-Bus
/// library's own, 25 s. On a bus that is not connected the answer is an error.
void callAsync(const QDBusConnection& bus, const QDBusMessage& message, QObject* context,
               std::function<void(const QDBusMessage&)> answered, int timeout = -1);

} // namespace nocta
