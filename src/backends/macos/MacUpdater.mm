#include "backends/macos/MacUpdater.h"

#import <os/log.h>

@implementation NoctaUpdaterDelegate

- (void)updater:(SPUUpdater*)source
    didFinishUpdateCycleForUpdateCheck:(SPUUpdateCheck)updateCheck
                                 error:(NSError*)error {
    std::optional<std::string> description;
    if (error != nil) {
        description = nocta::stdString(error.localizedDescription);
        // Standard error, where the program says it, is read by nobody who starts it by its icon.
        os_log_error(OS_LOG_DEFAULT, "Sparkle update check failed: %{public}@",
                     error.localizedDescription);
    }
    if (didFinishUpdateCycle) {
        didFinishUpdateCycle(description);
    }
}

- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(void*)context {
    updater->canCheckForUpdates.set(((SPUUpdater*)object).canCheckForUpdates);
}

@end
