#pragma once

#include "backends/linux/bus/NotificationSignals.h"
#include "base/Subscription.h"
#include "platform/UserNotificationCenter.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace nocta {

/// The notification service of a Linux desktop, org.freedesktop.Notifications on the session bus.
/// No call waits for the service, which may be absent, start late or die. Each notification is sent
/// only once, even if it is lost. The user can answer a notification only once, and only through
/// the process that showed it. Authorization is never refused: if there is a service, Nocta may use
/// it.
class FreedesktopNotifications final : public UserNotificationCenter {
public:
    FreedesktopNotifications();
    FreedesktopNotifications(const FreedesktopNotifications&) = delete;
    FreedesktopNotifications& operator=(const FreedesktopNotifications&) = delete;

    void requestAuthorization(std::uint32_t options,
                              AuthorizationHandler completionHandler) override;
    void setNotificationCategories(std::vector<UserNotificationCategory> categories) override;
    void setDelegate(UserNotificationCenterDelegate* delegate) override { delegate_ = delegate; }
    void add(const UserNotification& notification) override;

private:
    void follow(const QDBusConnection& bus);
    void findOwner(std::function<void(const QString& owner)> found);
    void show(const UserNotification& notification, std::uint32_t presentation,
              const QStringList& capabilities, const QString& owner);

    QDBusConnection bus_{QString()};
    UserNotificationCenterDelegate* delegate_ = nullptr;
    std::vector<UserNotificationCategory> categories_;
    /// The notifications that wait for an answer. Each entry contains the process that shows the
    /// notification, and the ID that this process has given the notification.
    std::set<std::pair<QString, unsigned int>> shown_;
    NotificationSignals signals_;
    Subscription sessionBus_;
};

} // namespace nocta
