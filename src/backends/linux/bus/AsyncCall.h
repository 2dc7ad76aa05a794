#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <functional>
#include <limits>

namespace nocta {

/// For a call whose answer is useful no matter how late it is.
inline constexpr int noTimeout = std::numeric_limits<int>::max();

/// Calls a method over the bus without waiting. The event loop calls `answered` with the reply or
/// the error, unless `context` is destroyed first. `timeout` is in milliseconds; -1 means the
/// default of the D-Bus library, 25 s. If the bus is not connected, the answer is an error.
void callAsync(const QDBusConnection& bus, const QDBusMessage& message, QObject* context,
               std::function<void(const QDBusMessage&)> answered, int timeout = -1);

} // namespace nocta
