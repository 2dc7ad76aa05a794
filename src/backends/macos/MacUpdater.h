#pragma once

#include "platform/Updater.h"

#if NOCTA_SPARKLE
#include "backends/macos/Observation.h"
#include "backends/macos/Strings.h"

#import <AppKit/AppKit.h>
#import <Sparkle/Sparkle.h>
#include <utility>

/// Forwards the updater's calls.
@interface NoctaUpdaterDelegate : NSObject <SPUUpdaterDelegate, SPUStandardUserDriverDelegate> {
@public
    nocta::Updater* updater; // not owned
    nocta::Updater::DidFinishUpdateCycle didFinishUpdateCycle;
    bool hasUpdateToShow; // an update that a scheduled check has found and the user has not seen
}
@end

namespace nocta {

/// Sparkle's standard updater, with its own windows. The feed's address and the public key are in
/// Info.plist. Until the updater is started, it does not check for updates, and every setting is
/// off.
class MacUpdater final : public Updater {
public:
    MacUpdater() = default;
    MacUpdater(const MacUpdater&) = delete;
    MacUpdater& operator=(const MacUpdater&) = delete;
    ~MacUpdater() override {
        [controller_.updater removeObserver:delegate_ forKeyPath:@"canCheckForUpdates"];
    }

    Availability availability() const override { return Availability::available; }

    std::optional<std::string> startUpdater(DidFinishUpdateCycle didFinishUpdateCycle) override {
        delegate_->updater = this;
        delegate_->didFinishUpdateCycle = std::move(didFinishUpdateCycle);
        controller_ = [[SPUStandardUpdaterController alloc] initWithStartingUpdater:NO
                                                                    updaterDelegate:delegate_
                                                                 userDriverDelegate:delegate_];
        [controller_.updater addObserver:delegate_
                              forKeyPath:@"canCheckForUpdates"
                                 options:NSKeyValueObservingOptionInitial
                                 context:nullptr];
        NSError* error = nil;
        if ([controller_.updater startUpdater:&error]) {
            return std::nullopt;
        }
        return stdString(error.localizedDescription);
    }

    bool automaticallyChecksForUpdates() const override {
        return controller_.updater.automaticallyChecksForUpdates;
    }
    void setAutomaticallyChecksForUpdates(bool checks) override {
        [controller_.updater setAutomaticallyChecksForUpdates:checks];
    }
    bool automaticallyDownloadsUpdates() const override {
        return controller_.updater.automaticallyDownloadsUpdates;
    }
    void setAutomaticallyDownloadsUpdates(bool downloads) override {
        [controller_.updater setAutomaticallyDownloadsUpdates:downloads];
    }
    void checkForUpdates() override { [controller_ checkForUpdates:nil]; }

    // Sparkle's windows do this.
    void install() override {}
    void skip() override {}
    void dismiss() override {}

private:
    NoctaUpdaterDelegate* delegate_ = [[NoctaUpdaterDelegate alloc] init]; // retained
    SPUStandardUpdaterController* controller_ = nil;
    /// This program is not in the Dock, so Sparkle would show the result of a scheduled check
    /// behind the windows of other programs. So opening the popover starts a user-initiated check,
    /// which brings the result to the front.
    Subscription popoverDidShow_ =
        observe(NSNotificationCenter.defaultCenter, NSPopoverDidShowNotification, nil,
                ^(NSNotification* /*notification*/) {
                  if (delegate_->hasUpdateToShow) {
                      checkForUpdates();
                  }
                });
};

} // namespace nocta
#else
namespace nocta {

/// For a build without Sparkle. Settings last until the process ends.
class MacUpdater final : public Updater {
public:
    Availability availability() const override { return Availability::noFeed; }
    std::optional<std::string> startUpdater(DidFinishUpdateCycle /*didFinish*/) override {
        return "This build does not support updates.";
    }
    bool automaticallyChecksForUpdates() const override { return checks_; }
    void setAutomaticallyChecksForUpdates(bool checks) override { checks_ = checks; }
    bool automaticallyDownloadsUpdates() const override { return downloads_; }
    void setAutomaticallyDownloadsUpdates(bool downloads) override { downloads_ = downloads; }
    void checkForUpdates() override {}
    void install() override {}
    void skip() override {}
    void dismiss() override {}

private:
    bool checks_ = false;
    bool downloads_ = false;
};

} // namespace nocta
#endif
