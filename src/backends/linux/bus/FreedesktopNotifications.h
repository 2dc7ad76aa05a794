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
/// Nothing waits for it, and it may be absent, come late or die. A notification is sent to it once
/// and never again, whatever becomes of it, and can be answered once, through the very process that
/// has shown it. There is nobody who could refuse: whatever service is there may be used.
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
    /// Those that wait for an answer, by the process that shows them and its own number for each.
    std::set<std::pair<QString, unsigned int>> shown_;
    NotificationSignals signals_;
    Subscription sessionBus_;
};

} // namespace nocta
