#include "backends/macos/shell/MacStatusBar.h"

@implementation NoctaStatusItemTarget

- (void)togglePopover:(id)sender {
    if (action) {
        action();
    }
}

@end
