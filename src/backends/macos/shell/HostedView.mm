#include "backends/macos/shell/HostedView.h"

@implementation NoctaContainerView

/// Resizes the subview. An autoresizing mask would not work, because it adds the difference in
/// size, and Qt also resizes its view when the content grows.
- (void)setFrameSize:(NSSize)size {
    [super setFrameSize:size];
    for (NSView* view in self.subviews) {
        view.frame = self.bounds;
    }
}

@end
