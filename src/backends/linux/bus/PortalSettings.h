#pragma once

#include "base/Subscription.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVariantMap>

#include <functional>

namespace nocta {

/// What the desktop's portal tells of the user's settings. Nothing waits for it: it may come late,
/// or never, and then nothing is told. A member of whoever wishes to know, declared last.
class PortalSettings {
public:
    using Settings = QMap<QString, QVariantMap>; ///< by namespace and key

    /// `told` gets the settings of these namespaces when they are known, and after each change; it
    /// is not called before this constructor returns.
    PortalSettings(QStringList namespaces, std::function<void(Settings)> told);
    PortalSettings(const PortalSettings&) = delete;
    PortalSettings& operator=(const PortalSettings&) = delete;

private:
    void follow(QDBusConnection bus);
    void read();

    QStringList namespaces_;
    std::function<void(Settings)> changed_;
    QDBusServiceWatcher portal_;
    QTimer read_; ///< reads at the end of the turn; a D-Bus signal can start a timer by itself
    Subscription sessionBus_;
};

} // namespace nocta
