#pragma once

#include "backends/macos/shell/MainMenu.h"
#include "base/RunLoop.h"
#include "platform/Application.h"

#include <QApplication>

#import <AppKit/AppKit.h>
#include <csignal>
#include <utility>
#include <vector>

@interface NoctaApplicationDelegate : NSObject <NSApplicationDelegate> {
@public
    nocta::ApplicationDelegate* receiver; // not owned; null after the program's end
}
- (void)showPreferencesWindow:(id)sender;
@end

namespace nocta {

/// NSApplication on Qt's event loop, which is NSApplication's own. Qt installs its own delegate in
/// front of the existing one, and forwards the system's calls to the existing delegate.
class MacApplication final : public Application {
public:
    explicit MacApplication(RunLoop& runLoop) : runLoop_(runLoop) {
        NSApplication.sharedApplication.delegate = delegate_;
        // This is the policy in Info.plist. Without it, a program outside a bundle may not show
        // windows.
        [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory];
        // Without this, Qt would bring a program that starts in the menu bar to the front.
        qputenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "1");
        for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
            std::signal(number, SIG_IGN); // the dispatch source receives it anyway
            signals_.push_back(dispatch_source_create(DISPATCH_SOURCE_TYPE_SIGNAL,
                                                      static_cast<uintptr_t>(number), 0,
                                                      dispatch_get_main_queue()));
            dispatch_source_set_event_handler(signals_.back(), ^{
              terminate();
            });
            dispatch_resume(signals_.back());
        }
    }

    /// AppKit ends the process itself. If Qt's loop ends instead, this notifies the delegate. The
    /// main menu replaces the menu that Qt creates, whose item for the preferences does nothing.
    int run(ApplicationDelegate& delegate) override {
        delegate_->receiver = &delegate;
        NSApp.mainMenu = makeMainMenu(delegate_);
        const auto exitStatus = QApplication::exec();
        if (std::exchange(delegate_->receiver, nullptr) != nullptr) {
            delegate.applicationWillTerminate();
        }
        return exitStatus;
    }
    void activateIgnoringOtherApps() override { [NSApp activateIgnoringOtherApps:YES]; }
    void terminate() override {
        runLoop_.post([] { [NSApp terminate:nil]; });
    }

private:
    RunLoop& runLoop_;
    std::vector<dispatch_source_t> signals_;
    NoctaApplicationDelegate* delegate_ = [[NoctaApplicationDelegate alloc] init]; // retained
    /// Held for the life of the process. Without it, App Nap slows the timers of a program without
    /// visible windows to one tick in many seconds, and breaks would come hours late. The machine
    /// may still sleep.
    id<NSObject> activity_ = [NSProcessInfo.processInfo
        beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                          reason:@"Breaks and screen colors follow the clock"];
};

} // namespace nocta
