#pragma once

#include "breaks/BreakTimer.h"
#include "platform/UserNotificationCenter.h"

namespace nocta {

/// Registers the category of break reminders with its two buttons, and turns what the user presses
/// into a skip or a snooze of the break. It posts nothing itself. It lives as long as the process.
class NotificationService final : private UserNotificationCenterDelegate {
public:
    NotificationService(UserNotificationCenter& center, BreakTimer& breakTimer);
    NotificationService(const NotificationService&) = delete;
    NotificationService& operator=(const NotificationService&) = delete;
    ~NotificationService() override;

    static NotificationService& shared();

    /// For alerts and sounds. A failure is printed on standard output; a refusal is not.
    void requestAuthorization();

private:
    std::uint32_t willPresentNotification() override;
    void didReceiveResponse(std::string_view actionIdentifier,
                            const std::function<void()>& completionHandler) override;

    UserNotificationCenter& center_;
    BreakTimer& breakTimer_;
};

} // namespace nocta
