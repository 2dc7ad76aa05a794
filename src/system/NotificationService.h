#pragma once

#include "breaks/BreakTimer.h"
#include "platform/UserNotificationCenter.h"

namespace nocta {

/// Registers the notification category for break reminders, with its two buttons, which skip or
/// snooze the break. It does not post notifications itself. The service exists for the lifetime of
/// the process.
class NotificationService final : private UserNotificationCenterDelegate {
public:
    NotificationService(UserNotificationCenter& center, BreakTimer& breakTimer);
    NotificationService(const NotificationService&) = delete;
    NotificationService& operator=(const NotificationService&) = delete;
    ~NotificationService() override;

    static NotificationService& shared();

    /// Requests permission for alerts and sounds. If that fails, prints the error on standard
    /// output. If the user denies permission, prints nothing.
    void requestAuthorization();

private:
    std::uint32_t willPresentNotification() override;
    void didReceiveResponse(std::string_view actionIdentifier,
                            const std::function<void()>& completionHandler) override;

    UserNotificationCenter& center_;
    BreakTimer& breakTimer_;
};

} // namespace nocta
