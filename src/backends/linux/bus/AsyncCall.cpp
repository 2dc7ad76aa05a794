#include "backends/linux/bus/AsyncCall.h"

#include <QCoreApplication>
#include <QDBusPendingCallWatcher>

#include <utility>

namespace nocta {

void callAsync(const QDBusConnection& bus, const QDBusMessage& message, QObject* context,
               std::function<void(const QDBusMessage&)> answered, int timeout) {
    // Not a child of the context, because handling the answer may destroy the context.
    auto* const watcher =
        new QDBusPendingCallWatcher(bus.asyncCall(message, timeout), QCoreApplication::instance());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [watcher, answered = std::move(answered)] { answered(watcher->reply()); });
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, &QObject::deleteLater);
}

} // namespace nocta
