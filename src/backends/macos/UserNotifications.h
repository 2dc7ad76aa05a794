#pragma once

#include "backends/macos/Strings.h"
#include "base/RunLoop.h"
#include "platform/UserNotificationCenter.h"

#import <UserNotifications/UserNotifications.h>
#include <utility>

/// Forwards the notification center's calls to `receiver` from the run loop.
@interface NoctaNotificationDelegate : NSObject <UNUserNotificationCenterDelegate>
@property(nonatomic) nocta::RunLoop* runLoop;
@property(nonatomic) nocta::UserNotificationCenterDelegate* receiver; // not owned; null if none
@end

namespace nocta {

static_assert(notificationSound == UNAuthorizationOptionSound);
static_assert(notificationAlert == UNAuthorizationOptionAlert);
static_assert(notificationSound == UNNotificationPresentationOptionSound);
static_assert(notificationBanner == UNNotificationPresentationOptionBanner);

/// Uses UNUserNotificationCenter, which answers on its own threads; this class moves all answers to
/// the run loop. A program without a bundle, such as a development build, has no notification
/// center: requesting it would throw an exception and end the program. Such a program shows no
/// notifications, and authorization is refused.
class UserNotifications final : public UserNotificationCenter {
public:
    explicit UserNotifications(RunLoop& runLoop) { delegate_.runLoop = &runLoop; }

    void requestAuthorization(std::uint32_t options,
                              AuthorizationHandler completionHandler) override {
        RunLoop& runLoop = *delegate_.runLoop;
        if (center_ == nil) {
            runLoop.post([completionHandler] { completionHandler(false, std::nullopt); });
            return;
        }
        [center_ requestAuthorizationWithOptions:options
                               completionHandler:^(BOOL granted, NSError* error) {
                                 runLoop.post([completionHandler, granted, error] {
                                     std::optional<std::string> description;
                                     if (error != nil) {
                                         description = stdString(error.localizedDescription);
                                     }
                                     completionHandler(granted, description);
                                 });
                               }];
    }

    void setNotificationCategories(std::vector<UserNotificationCategory> categories) override {
        NSMutableSet<UNNotificationCategory*>* const set = [NSMutableSet set];
        for (const auto& category : categories) {
            NSMutableArray<UNNotificationAction*>* const actions = [NSMutableArray array];
            for (const auto& action : category.actions) {
                [actions addObject:[UNNotificationAction
                                       actionWithIdentifier:nsString(action.identifier)
                                                      title:translated(action.title)
                                                    options:UNNotificationActionOptionNone]];
            }
            [set addObject:[UNNotificationCategory
                               categoryWithIdentifier:nsString(category.identifier)
                                              actions:actions
                                    intentIdentifiers:@[]
                                              options:UNNotificationCategoryOptionNone]];
        }
        [center_ setNotificationCategories:set];
    }

    void setDelegate(UserNotificationCenterDelegate* delegate) override {
        delegate_.receiver = delegate;
        [center_ setDelegate:delegate != nullptr ? delegate_ : nil];
    }

    void add(const UserNotification& notification) override {
        UNMutableNotificationContent* const content = [[UNMutableNotificationContent alloc] init];
        content.title = translated(notification.title);
        content.body = translated(notification.body);
        content.categoryIdentifier = nsString(notification.categoryIdentifier);
        content.sound = UNNotificationSound.defaultSound;
        [center_ addNotificationRequest:[UNNotificationRequest
                                            requestWithIdentifier:NSUUID.UUID.UUIDString
                                                          content:content
                                                          trigger:nil] // immediately
                  withCompletionHandler:nil];
    }

private:
    UNUserNotificationCenter* center_ = NSBundle.mainBundle.bundleIdentifier != nil
                                            ? UNUserNotificationCenter.currentNotificationCenter
                                            : nil;
    NoctaNotificationDelegate* delegate_ = [[NoctaNotificationDelegate alloc] init]; // retained
};

} // namespace nocta
