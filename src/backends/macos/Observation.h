#pragma once

#include "base/NotificationCenter.h"

#import <Foundation/Foundation.h>

namespace nocta {

/// Calls the block on the main queue for each notification with that name from the object, or from
/// any object if `object` is nil.
inline Subscription observe(NSNotificationCenter* center, NSNotificationName name, id object,
                            void (^block)(NSNotification* notification)) {
    const id<NSObject> token = [center addObserverForName:name
                                                   object:object
                                                    queue:NSOperationQueue.mainQueue
                                               usingBlock:block];
    return Subscription([center, token] { [center removeObserver:token]; });
}

/// Posts `posted` on the program's notification center for each notification with that name on the
/// default notification center.
inline Subscription passOn(NSNotificationName name, NotificationCenter& to,
                           std::string_view posted) {
    return observe(NSNotificationCenter.defaultCenter, name, nil,
                   ^(NSNotification* /*notification*/) {
                     to.post(posted);
                   });
}

} // namespace nocta
