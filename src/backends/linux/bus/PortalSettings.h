#pragma once

#include "backends/linux/bus/BusSignal.h"
#include "base/Subscription.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>

namespace nocta {

/// The user's settings as the desktop's portal reports them. No call waits for the portal: it may
/// answer late or never, and if it never answers, the callback is not called. Make this object the
/// last member of the class that needs the settings.
class PortalSettings {
public:
    using Settings = QMap<QString, QVariantMap>; ///< by namespace and key

    /// Calls `changed` with the settings of these namespaces once the settings are known and
    /// whenever they change, but never before this constructor returns.
    PortalSettings(QStringList namespaces, std::function<void(Settings)> changed);
    PortalSettings(const PortalSettings&) = delete;
    PortalSettings& operator=(const PortalSettings&) = delete;

private:
    void follow(const QDBusConnection& bus);
    void read();

    QStringList namespaces_;
    std::function<void(Settings)> changed_;
    QDBusServiceWatcher portal_;
    BusSignal changes_{[this] { read(); }};
    Subscription sessionBus_;
};

} // namespace nocta
