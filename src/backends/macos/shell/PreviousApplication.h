#pragma once

#include "backends/macos/Observation.h"
#include "base/Subscription.h"
#include "base/Timer.h"

#import <AppKit/AppKit.h>
#include <chrono>

namespace nocta {

/// The program that the user worked in before Nocta. AppKit leaves a program that is not in the
/// Dock active when its last window closes, and then keys go nowhere. So this class activates the
/// previous program after a break and after the last window has closed.
class PreviousApplication {
public:
    explicit PreviousApplication(RunLoop& runLoop) : runLoop_(runLoop) {
        remember(NSWorkspace.sharedWorkspace.frontmostApplication);
    }
    PreviousApplication(const PreviousApplication&) = delete;
    PreviousApplication& operator=(const PreviousApplication&) = delete;

    /// To be called before the cover takes the keyboard.
    void coverComes() {
        if (covers_++ == 0) {
            windowMayKeepKeyboard_ = NSApp.active || !hasWindow();
        }
    }

    /// To be called when the cover is no longer on screen.
    void coverGoes() {
        if (--covers_ == 0 && !(windowMayKeepKeyboard_ && hasWindow())) {
            activate();
        }
    }

private:
    static constexpr auto nextWindowTime = std::chrono::milliseconds(300);

    /// A window that will close is still visible, and Sparkle shows the next one a moment later.
    void checkLater() {
        check_.start(runLoop_, nextWindowTime, Repeat::no, [this] {
            if (covers_ == 0 && NSApp.keyWindow == nil && !hasWindow()) { // a popover may be key
                activate();
            }
        });
    }

    /// A window that the user works in: an alert, but no cover, popover or status item.
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

    /// The system's own agents become active too, for a question or while the screen is locked.
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
    /// After the break. A window that was open behind another program must not take it.
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
    /// An alert is not closed when it ends.
    Subscription didResignKey_ =
        observe(NSNotificationCenter.defaultCenter, NSWindowDidResignKeyNotification, nil,
                ^(NSNotification* /*notification*/) {
                  checkLater();
                });
};

} // namespace nocta
