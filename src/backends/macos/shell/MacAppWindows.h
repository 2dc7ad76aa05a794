#pragma once

#include "backends/macos/Observation.h"
#include "backends/macos/Strings.h"
#include "backends/macos/shell/HostedView.h"
#include "base/Deferred.h"
#include "platform/AppWindows.h"

#import <AppKit/AppKit.h>
#include <utility>

namespace nocta {

class MacAppWindow final : public AppWindow {
public:
    MacAppWindow(RunLoop& runLoop, const AppWindows::Style& style, std::unique_ptr<View> content,
                 std::function<void()> onClose)
        : content_(std::move(content), HostedView::Background::window),
          least_(NSMakeSize(style.width, style.height)),
          window_([[NSWindow alloc] initWithContentRect:NSZeroRect
                                              styleMask:style.styleMask // the same bits
                                                backing:NSBackingStoreBuffered
                                                  defer:NO]),
          close_(runLoop, std::move(onClose)) {
        window_.releasedWhenClosed = NO; // it is owned here
        window_.title = translated(style.title);
        window_.level = static_cast<NSWindowLevel>(style.level);
        window_.contentView = content_.nativeView();
        [window_ setContentSize:content_.fittingSize(least_)];
        [window_ center];
        content_.layoutRequested = [this] { fitContent(); };
        willClose_ = observe(NSNotificationCenter.defaultCenter, NSWindowWillCloseNotification,
                             window_, ^(NSNotification* /*notification*/) {
                               close_.request();
                             });
    }
    ~MacAppWindow() override {
        willClose_.cancel(); // this is not the user
        [window_ close];
    }

    void makeKeyAndOrderFront() override {
        [window_ makeKeyAndOrderFront:nil];
        content_.makeFirstResponder();
    }
    void orderFrontRegardless() override { [window_ orderFrontRegardless]; }

private:
    /// The title bar stays where it is.
    void fitContent() {
        const NSSize size = content_.fittingSize(least_);
        const NSRect old = window_.frame;
        NSRect frame = [window_ frameRectForContentRect:NSMakeRect(0, 0, size.width, size.height)];
        frame.origin = NSMakePoint(old.origin.x, NSMaxY(old) - frame.size.height);
        if (!NSEqualRects(frame, old)) {
            [window_ setFrame:frame display:YES];
        }
    }

    HostedView content_;
    NSSize least_;
    NSWindow* window_;
    Deferred close_;
    Subscription willClose_;
};

class MacAppWindows final : public AppWindows {
public:
    explicit MacAppWindows(RunLoop& runLoop) : runLoop_(runLoop) {}

    std::unique_ptr<AppWindow> makeWindow(const Style& style, std::unique_ptr<View> content,
                                          std::function<void()> onClose) override {
        return std::make_unique<MacAppWindow>(runLoop_, style, std::move(content),
                                              std::move(onClose));
    }

private:
    RunLoop& runLoop_;
};

} // namespace nocta
