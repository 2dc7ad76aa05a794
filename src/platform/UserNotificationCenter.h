#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nocta {

// Bits for a program's permissions and for the presentation of a notification.
inline constexpr std::uint32_t notificationSound = 2;
inline constexpr std::uint32_t notificationAlert = 4;
inline constexpr std::uint32_t notificationBanner = 16;

/// A button of a notification.
struct UserNotificationAction {
    std::string identifier;
    std::string title;
    bool operator==(const UserNotificationAction&) const = default;
};

/// A kind of notification, with its buttons.
struct UserNotificationCategory {
    std::string identifier;
    std::vector<UserNotificationAction> actions;
    bool operator==(const UserNotificationCategory&) const = default;
};

struct UserNotification {
    std::string title;
    std::string body;
    std::string categoryIdentifier;
};

/// Receives the events of the notification center. All functions are called from the run loop.
class UserNotificationCenterDelegate {
public:
    virtual ~UserNotificationCenterDelegate() = default;

    /// Returns how to show a notification that arrives while the program is in front, as a bit
    /// mask.
    virtual std::uint32_t willPresentNotification() = 0;

    /// The user clicked a button of a notification. Call `completionHandler` after handling the
    /// response.
    virtual void didReceiveResponse(std::string_view actionIdentifier,
                                    const std::function<void()>& completionHandler) = 0;
};

/// The desktop's notifications. Corresponds to UNUserNotificationCenter on macOS.
class UserNotificationCenter {
public:
    /// Receives whether the user allows notifications, and the error, if any.
    using AuthorizationHandler =
        std::function<void(bool granted, const std::optional<std::string>& error)>;

    virtual ~UserNotificationCenter() = default;

    /// Requests permission, and calls `completionHandler` once, from the run loop.
    virtual void requestAuthorization(std::uint32_t options,
                                      AuthorizationHandler completionHandler) = 0;
    virtual void setNotificationCategories(std::vector<UserNotificationCategory> categories) = 0;

    /// The center does not own the delegate; null removes it.
    virtual void setDelegate(UserNotificationCenterDelegate* delegate) = 0;

    /// Shows a notification immediately.
    virtual void add(const UserNotification& notification) = 0;
};

} // namespace nocta
