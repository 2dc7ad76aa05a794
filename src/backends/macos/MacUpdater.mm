#include "backends/macos/MacUpdater.h"

#import <os/log.h>

@implementation NoctaUpdaterDelegate

/// Nobody reads the standard error of a program that was started from its icon, so errors go only
/// to the log. Sparkle also ends a cycle with an error when there is no update or the user
/// postpones one. These errors are logged too, because every cycle matters when a missing update is
/// investigated.
- (void)updater:(SPUUpdater*)source
    didFinishUpdateCycleForUpdateCheck:(SPUUpdateCheck)updateCheck
                                 error:(NSError*)error {
    if (error != nil) {
        os_log_error(OS_LOG_DEFAULT, "Sparkle update check failed: %{public}@",
                     error.localizedDescription);
    }
    if (didFinishUpdateCycle) {
        didFinishUpdateCycle(std::nullopt);
    }
}

- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(void*)context {
    updater->canCheckForUpdates.set(((SPUUpdater*)object).canCheckForUpdates);
}

- (BOOL)supportsGentleScheduledUpdateReminders {
    return YES;
}

/// If Sparkle would open its window in front, for example right after launch, Sparkle shows the
/// update itself.
- (BOOL)standardUserDriverShouldHandleShowingScheduledUpdate:(SUAppcastItem*)update
                                         andInImmediateFocus:(BOOL)immediateFocus {
    return immediateFocus;
}

- (void)standardUserDriverWillHandleShowingUpdate:(BOOL)handleShowingUpdate
                                        forUpdate:(SUAppcastItem*)update
                                            state:(SPUUserUpdateState*)state {
    hasUpdateToShow = !handleShowingUpdate;
}

- (void)standardUserDriverDidReceiveUserAttentionForUpdate:(SUAppcastItem*)update {
    hasUpdateToShow = false;
}

- (void)standardUserDriverWillFinishUpdateSession {
    hasUpdateToShow = false;
}

@end
