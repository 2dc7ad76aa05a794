#include "backends/macos/shell/HostedView.h"

@implementation NoctaContainerView

/// Not by an autoresizing mask, which adds what changed: Qt gives its view another size as well
/// when the content grows.
- (void)setFrameSize:(NSSize)size {
    [super setFrameSize:size];
    for (NSView* view in self.subviews) {
        view.frame = self.bounds;
    }
}

@end
