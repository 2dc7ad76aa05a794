#include "backends/macos/shell/MacApplication.h"

// Nothing is forwarded after the receiver has been notified that the program is ending.
@implementation NoctaApplicationDelegate

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    if (receiver != nullptr) {
        receiver->applicationDidFinishLaunching();
    }
}

- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender
                    hasVisibleWindows:(BOOL)hasVisibleWindows {
    if (receiver != nullptr) {
        receiver->applicationDidReopen();
    }
    return NO; // AppKit has nothing to open
}

- (void)showPreferencesWindow:(id)sender {
    if (receiver != nullptr) {
        receiver->showPreferencesWindow();
    }
}

/// Quits immediately. Qt would refuse first and then leave its event loop, and the refusal would
/// cancel a logout in progress.
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)sender {
    return NSTerminateNow;
}

/// The process exits after this call.
- (void)applicationWillTerminate:(NSNotification*)notification {
    if (nocta::ApplicationDelegate* const told = std::exchange(receiver, nullptr)) {
        told->applicationWillTerminate();
    }
}

@end
