#include "backends/macos/shell/MacOverlayWindows.h"

@implementation HostingOverlayWindow

- (BOOL)canBecomeKeyWindow {
    return YES;
}

- (BOOL)canBecomeMainWindow {
    return NO;
}

@end
