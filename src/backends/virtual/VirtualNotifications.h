#pragma once

#include "backends/virtual/Trace.h"
#include "base/RunLoop.h"
#include "platform/UserNotificationCenter.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace nocta {

/// A notification center in memory. It keeps the notifications that were shown, and a test can
/// click their buttons.
class VirtualNotifications final : public UserNotificationCenter {
public:
    VirtualNotifications(Trace& trace, RunLoop& runLoop) : trace_(trace), runLoop_(runLoop) {}

    // For tests: the system's features, and what the user does and sees.
    bool isGranted = true;
    std::optional<std::string> error;
    std::vector<UserNotificationCategory> categories;
    struct Shown {
        UserNotification notification;
        std::uint32_t presentation = 0;
        bool isAnswered = false; ///< if true, the notification is no longer on screen
    };
    std::vector<Shown> shown;
    /// Clicks a button of a notification. Returns whether the program called the completion
    /// handler.
    bool choose(std::size_t index, const std::string& actionIdentifier) {
        bool isDone = false;
        if (!std::exchange(shown.at(index).isAnswered, true) && delegate_ != nullptr) {
            delegate_->didReceiveResponse(actionIdentifier, [&] { isDone = true; });
        }
        return isDone;
    }

    // For the program: the functions of the port.
    void requestAuthorization(std::uint32_t options,
                              AuthorizationHandler completionHandler) override {
        trace_.record("requestAuthorization " + std::to_string(options));
        runLoop_.post(
            [this, handler = std::move(completionHandler)] { handler(isGranted, error); });
    }
    void setNotificationCategories(std::vector<UserNotificationCategory> newCategories) override {
        trace_.record("setNotificationCategories");
        categories = std::move(newCategories);
    }
    void setDelegate(UserNotificationCenterDelegate* delegate) override { delegate_ = delegate; }
    void add(const UserNotification& notification) override {
        const auto presentation = delegate_ == nullptr ? 0 : delegate_->willPresentNotification();
        if ((presentation & (notificationAlert | notificationBanner)) != 0) {
            shown.push_back({notification, presentation});
        }
    }

private:
    Trace& trace_;
    RunLoop& runLoop_;
    UserNotificationCenterDelegate* delegate_ = nullptr;
};

} // namespace nocta
