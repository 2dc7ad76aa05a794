#include "backends/macos/UserNotifications.h"

@implementation NoctaNotificationDelegate

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:
             (void (^)(UNNotificationPresentationOptions options))completionHandler {
    self.runLoop->post([self, completionHandler] {
        completionHandler(self.receiver != nullptr ? self.receiver->willPresentNotification() : 0);
    });
}

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
    didReceiveNotificationResponse:(UNNotificationResponse*)response
             withCompletionHandler:(void (^)(void))completionHandler {
    self.runLoop->post([self, response, completionHandler] {
        if (self.receiver != nullptr) {
            self.receiver->didReceiveResponse(nocta::stdString(response.actionIdentifier),
                                              completionHandler);
        } else {
            completionHandler();
        }
    });
}

@end
