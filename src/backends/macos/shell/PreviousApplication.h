#pragma once

#include "backends/macos/Observation.h"
#include "base/Subscription.h"
#include "base/Timer.h"

#import <AppKit/AppKit.h>
#include <chrono>

namespace nocta {

/// The program that the user worked in before Nocta. When the last window of a program that is not
/// in the Dock closes, AppKit leaves the program active, and then key presses have no effect. So
/// this class activates the previous program after a break and after the last window has closed.
class PreviousApplication {
public:
    explicit PreviousApplication(RunLoop& runLoop) : runLoop_(runLoop) {
        remember(NSWorkspace.sharedWorkspace.frontmostApplication);
    }
    PreviousApplication(const PreviousApplication&) = delete;
    PreviousApplication& operator=(const PreviousApplication&) = delete;

    /// Call this function before the cover takes the keyboard focus.
    void coverComes() {
        if (covers_++ == 0) {
            windowMayKeepKeyboard_ = NSApp.active || !hasWindow();
        }
    }

    /// Call this when the cover is no longer on the screen.
    void coverGoes() {
        if (--covers_ == 0 && !(windowMayKeepKeyboard_ && hasWindow())) {
            activate();
        }
    }

private:
    static constexpr auto nextWindowTime = std::chrono::milliseconds(300);

    /// Checks for windows a moment later, because a window that is about to close is still visible,
    /// and Sparkle may show another window right after it.
    void checkLater() {
        check_.start(runLoop_, nextWindowTime, Repeat::no, [this] {
            if (covers_ == 0 && NSApp.keyWindow == nil && !hasWindow()) { // a popover may be key
                activate();
            }
        });
    }

    /// Whether there is a window that the user can work in, such as an alert. Covers, popovers and
    /// status items do not count.
    static bool hasWindow() {
        if (NSApp.modalWindow != nil) {
            return true;
        }
        for (NSWindow* window in NSApp.windows) {
            if (window.visible && window.canBecomeMainWindow) {
                return true;
            }
        }
        return false;
    }

    /// Remembers only regular programs. System agents also become active, for example to ask the
    /// user a question or while the screen is locked.
    void remember(NSRunningApplication* application) {
        if (application.activationPolicy == NSApplicationActivationPolicyRegular) {
            application_ = application;
        }
    }

    void activate() {
        if (!NSApp.active || application_ == nil || application_.terminated) {
            return;
        }
        if (@available(macOS 14.0, *)) {
            [NSApp yieldActivationToApplication:application_];
        }
        [application_ activateWithOptions:0];
    }

    RunLoop& runLoop_;
    NSRunningApplication* application_ = nil;
    int covers_ = 0;
    /// Whether a window may keep the keyboard focus after the break. A window that was open behind
    /// another program must not take it.
    bool windowMayKeepKeyboard_ = false;
    Timer check_;
    Subscription didActivate_ = observe(
        NSWorkspace.sharedWorkspace.notificationCenter,
        NSWorkspaceDidActivateApplicationNotification, nil, ^(NSNotification* notification) {
          remember(notification.userInfo[NSWorkspaceApplicationKey]);
        });
    Subscription willClose_ =
        observe(NSNotificationCenter.defaultCenter, NSWindowWillCloseNotification, nil,
                ^(NSNotification* /*notification*/) {
                  checkLater();
                });
    /// When an alert ends, it resigns key status but does not close.
    Subscription didResignKey_ =
        observe(NSNotificationCenter.defaultCenter, NSWindowDidResignKeyNotification, nil,
                ^(NSNotification* /*notification*/) {
                  checkLater();
                });
};

} // namespace nocta
