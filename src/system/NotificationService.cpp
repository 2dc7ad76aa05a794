#include "system/NotificationService.h"

#include "base/Translatable.h"

#include <iostream>

namespace nocta {

namespace {
constexpr auto skipAction = "SKIP_BREAK";
constexpr auto snoozeAction = "SNOOZE_BREAK";
} // namespace

NotificationService::NotificationService(UserNotificationCenter& center, BreakTimer& breakTimer)
    : center_(center), breakTimer_(breakTimer) {
    center_.setNotificationCategories(
        {{.identifier = "BREAK_REMINDER",
          .actions = {
              {.identifier = skipAction, .title = translatable("Nocta", "Skip")},
              {.identifier = snoozeAction, .title = translatable("Nocta", "Snooze 5 min")}}}});
    center_.setDelegate(this);
}

NotificationService::~NotificationService() {
    center_.setDelegate(nullptr);
}

void NotificationService::requestAuthorization() {
    center_.requestAuthorization(notificationAlert | notificationSound,
                                 [](bool /*granted*/, const std::optional<std::string>& error) {
                                     if (error) {
                                         std::cout << "Notification authorization error: " << *error
                                                   << std::endl;
                                     }
                                 });
}

std::uint32_t NotificationService::willPresentNotification() {
    return notificationBanner | notificationSound;
}

void NotificationService::didReceiveResponse(std::string_view actionIdentifier,
                                             const std::function<void()>& completionHandler) {
    if (actionIdentifier == skipAction) {
        breakTimer_.skip();
    } else if (actionIdentifier == snoozeAction) {
        breakTimer_.snooze(snoozeMinutes);
    }
    completionHandler();
}

} // namespace nocta
