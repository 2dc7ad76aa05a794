#include "backends/macos/shell/HostedView.h"

@implementation NoctaContainerView

/// Not with an autoresizing mask, which adds the difference: Qt also resizes its view when the
/// content grows.
- (void)setFrameSize:(NSSize)size {
    [super setFrameSize:size];
    for (NSView* view in self.subviews) {
        view.frame = self.bounds;
    }
}

@end
