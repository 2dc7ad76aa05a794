#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nocta {

// Bits of what a program may do and of how a notification is shown.
inline constexpr std::uint32_t notificationSound = 2;
inline constexpr std::uint32_t notificationAlert = 4;
inline constexpr std::uint32_t notificationBanner = 16;

/// A button of a notification.
struct UserNotificationAction {
    std::string identifier;
    std::string title;
    bool operator==(const UserNotificationAction&) const = default;
};

/// A kind of notification, with the buttons that those of it have.
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

/// What the notification centre tells. Everything arrives from the run loop.
class UserNotificationCenterDelegate {
public:
    virtual ~UserNotificationCenterDelegate() = default;

    /// How a notification is shown that arrives while the program is in front: a mask of bits.
    virtual std::uint32_t willPresentNotification() = 0;

    /// The user's answer to a notification; `completionHandler` is to be called when it has been
    /// acted upon.
    virtual void didReceiveResponse(std::string_view actionIdentifier,
                                    const std::function<void()>& completionHandler) = 0;
};

/// The desktop's notifications. Stands for UNUserNotificationCenter.
class UserNotificationCenter {
public:
    /// Whether the user allows it, and what went wrong, if anything did.
    using AuthorizationHandler =
        std::function<void(bool granted, const std::optional<std::string>& error)>;

    virtual ~UserNotificationCenter() = default;

    /// `completionHandler` is called once, from the run loop.
    virtual void requestAuthorization(std::uint32_t options,
                                      AuthorizationHandler completionHandler) = 0;
    virtual void setNotificationCategories(std::vector<UserNotificationCategory> categories) = 0;

    /// Not owned; null for none.
    virtual void setDelegate(UserNotificationCenterDelegate* delegate) = 0;

    /// Shows a notification now.
    virtual void add(const UserNotification& notification) = 0;
};

} // namespace nocta
