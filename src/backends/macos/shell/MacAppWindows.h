#pragma once

#include "backends/macos/Observation.h"
#include "backends/macos/Strings.h"
#include "backends/macos/shell/HostedView.h"
#include "base/Deferred.h"
#include "platform/AppWindows.h"

#import <AppKit/AppKit.h>
#include <algorithm>
#include <utility>

namespace nocta {

static_assert(AppWindows::titled == NSWindowStyleMaskTitled);
static_assert(AppWindows::closable == NSWindowStyleMaskClosable);
static_assert(AppWindows::miniaturizable == NSWindowStyleMaskMiniaturizable);

class MacAppWindow final : public AppWindow {
public:
    MacAppWindow(RunLoop& runLoop, const AppWindows::Style& style, std::unique_ptr<View> content,
                 std::function<void()> onClose)
        : content_(std::move(content), NSMakeSize(style.width, style.height),
                   HostedView::Kind::window),
          window_([[NSWindow alloc] initWithContentRect:NSZeroRect
                                              styleMask:style.styleMask
                                                backing:NSBackingStoreBuffered
                                                  defer:NO]),
          close_(runLoop, std::move(onClose)) {
        window_.releasedWhenClosed = NO; // this object owns it
        window_.title = translated(style.title);
        window_.level = static_cast<NSWindowLevel>(style.level);
        window_.contentView = content_.view();
        [window_ setContentSize:content_.fittingSize()];
        [window_ center];
        content_.contentChanged = [this] { fitContent(); };
        willClose_ = observe(NSNotificationCenter.defaultCenter, NSWindowWillCloseNotification,
                             window_, ^(NSNotification* /*notification*/) {
                               close_.request();
                             });
    }
    MacAppWindow(const MacAppWindow&) = delete;
    MacAppWindow& operator=(const MacAppWindow&) = delete;
    ~MacAppWindow() override {
        willClose_.cancel(); // the user did not close it
        [window_ close];
    }

    /// A minimized window is restored first, because ordering it to the front would leave it in the
    /// Dock.
    void makeKeyAndOrderFront() override {
        if (window_.miniaturized) {
            [window_ deminiaturize:nil];
        }
        [window_ makeKeyAndOrderFront:nil];
        content_.makeFirstResponder();
    }
    void orderFrontRegardless() override { [window_ orderFrontRegardless]; }

private:
    /// Resizes the window to fit its content. The title bar does not move if there is enough space
    /// below it.
    void fitContent() {
        const NSSize size = content_.fittingSize();
        const NSRect old = window_.frame;
        NSRect frame = [window_ frameRectForContentRect:NSMakeRect(0, 0, size.width, size.height)];
        if (NSEqualSizes(frame.size, old.size)) {
            return; // otherwise a window that the user has moved partly off the screen would move
        }
        frame.origin = NSMakePoint(old.origin.x, NSMaxY(old) - frame.size.height);
        if (NSScreen* const screen = window_.screen) { // nil if the window is on no screen
            frame.origin.y = std::max(frame.origin.y, NSMinY(screen.visibleFrame));
        }
        [window_ setFrame:frame display:YES];
    }

    HostedView content_;
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
