#include "backends/macos/shell/MacOverlayWindows.h"

@implementation HostingOverlayWindow

- (BOOL)canBecomeKeyWindow {
    return YES;
}

- (BOOL)canBecomeMainWindow {
    return NO;
}

/// Lets this window work while an alert is open below it.
- (BOOL)worksWhenModal {
    return YES;
}

@end
