#include "backends/macos/shell/MacOverlayWindows.h"

@implementation HostingOverlayWindow

- (BOOL)canBecomeKeyWindow {
    return YES;
}

- (BOOL)canBecomeMainWindow {
    return NO;
}

/// An alert may be open below.
- (BOOL)worksWhenModal {
    return YES;
}

@end
