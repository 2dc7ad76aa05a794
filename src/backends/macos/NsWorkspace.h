#pragma once

#include "backends/macos/Observation.h"
#include "backends/macos/Strings.h"
#include "platform/Workspace.h"

#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>

namespace nocta {

/// When one of the program's own windows enters or leaves full screen, this class posts on the
/// program's notification center.
class NsWorkspace final : public Workspace {
public:
    explicit NsWorkspace(NotificationCenter& notificationCenter)
        : enterFullScreen_(passOn(NSWindowDidEnterFullScreenNotification, notificationCenter,
                                  windowDidEnterFullScreenNotification)),
          exitFullScreen_(passOn(NSWindowDidExitFullScreenNotification, notificationCenter,
                                 windowDidExitFullScreenNotification)) {}

    Subscription observeDidActivateApplication(
        std::function<void(const std::optional<RunningApplication>&)> callback) override {
        return observe(
            NSWorkspace.sharedWorkspace.notificationCenter,
            NSWorkspaceDidActivateApplicationNotification, nil, ^(NSNotification* notification) {
              callback(runningApplication(notification.userInfo[NSWorkspaceApplicationKey]));
            });
    }
    std::optional<RunningApplication> frontmostApplication() override {
        return runningApplication(NSWorkspace.sharedWorkspace.frontmostApplication);
    }

    std::optional<std::vector<WindowInfo>> copyWindowInfo() override {
        NSArray* const list = CFBridgingRelease(
            CGWindowListCopyWindowInfo(kCGWindowListOptionOnScreenOnly, kCGNullWindowID));
        if (list == nil) {
            return std::nullopt;
        }
        std::vector<WindowInfo> windows;
        for (NSDictionary* window in list) {
            NSDictionary* const bounds = window[(__bridge NSString*)kCGWindowBounds];
            windows.push_back({number(bounds[@"Width"]), number(bounds[@"Height"])});
        }
        return windows;
    }

    std::optional<Rect> mainScreenFrame() override {
        NSScreen* const screen = NSScreen.mainScreen;
        if (screen == nil) {
            return std::nullopt;
        }
        const NSRect frame = screen.frame;
        return Rect{frame.origin.x, frame.origin.y, frame.size.width, frame.size.height};
    }
    bool accessibilityDisplayShouldReduceMotion() override {
        return NSWorkspace.sharedWorkspace.accessibilityDisplayShouldReduceMotion;
    }

private:
    /// Returns nothing if the object is not a running application.
    static std::optional<RunningApplication> runningApplication(id object) {
        if (![object isKindOfClass:NSRunningApplication.class]) {
            return std::nullopt;
        }
        NSRunningApplication* const application = object;
        NSString* const identifier = application.bundleIdentifier;
        return RunningApplication{identifier != nil ? std::optional(stdString(identifier))
                                                    : std::nullopt,
                                  stdString(application.localizedName)};
    }

    static std::optional<double> number(id object) {
        return [object isKindOfClass:NSNumber.class] ? std::optional([object doubleValue])
                                                     : std::nullopt;
    }

    Subscription enterFullScreen_;
    Subscription exitFullScreen_;
};

} // namespace nocta
