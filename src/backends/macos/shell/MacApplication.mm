#include "backends/macos/shell/MacApplication.h"

// None of these reaches a receiver that has been told of the end.
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
    return NO; // there is nothing that AppKit should open
}

- (void)showPreferencesWindow:(id)sender {
    if (receiver != nullptr) {
        receiver->showPreferencesWindow();
    }
}

/// At once. Qt would refuse first and then leave its event loop, and the refusal would end a logout
/// that is under way.
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)sender {
    return NSTerminateNow;
}

/// The process exits after it.
- (void)applicationWillTerminate:(NSNotification*)notification {
    if (nocta::ApplicationDelegate* const told = std::exchange(receiver, nullptr)) {
        told->applicationWillTerminate();
    }
}

@end
