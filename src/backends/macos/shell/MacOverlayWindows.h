#pragma once

#include "backends/macos/shell/HostedView.h"
#include "backends/macos/shell/PreviousApplication.h"
#include "base/Typing.h"
#include "platform/OverlayWindows.h"

#import <QuartzCore/QuartzCore.h>

#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>
#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

/// Can become the key window without becoming the main window; a plain borderless window could
/// become neither.
@interface HostingOverlayWindow : NSWindow
@end

namespace nocta {

class MacOverlayWindow final : public OverlayWindow {
public:
    MacOverlayWindow(const Rect& frame, const OverlayWindows::Style& style,
                     std::unique_ptr<View> content, PreviousApplication& previousApplication)
        : previousApplication_(previousApplication),
          content_(std::move(content), NSZeroSize, HostedView::Kind::clear),
          window_([[HostingOverlayWindow alloc]
              initWithContentRect:NSMakeRect(frame.x, frame.y, frame.width, frame.height)
                        styleMask:NSWindowStyleMaskBorderless
                          backing:NSBackingStoreBuffered
                            defer:NO]) {
        window_.releasedWhenClosed = NO; // this object owns it
        window_.level = static_cast<NSWindowLevel>(style.level);
        window_.opaque = NO;
        window_.backgroundColor = NSColor.clearColor;
        window_.ignoresMouseEvents = NO;
        window_.collectionBehavior = style.collectionBehavior; // the same bits
        window_.hasShadow = NO;
        window_.contentView = content_.view();
        window_.alphaValue = 0;
    }
    MacOverlayWindow(const MacOverlayWindow&) = delete;
    MacOverlayWindow& operator=(const MacOverlayWindow&) = delete;
    ~MacOverlayWindow() override {
        orderOut();
        [window_ close];
    }

    void makeKeyAndOrderFront() override {
        if (!std::exchange(isShown_, true)) {
            previousApplication_.coverComes();
        }
        [window_ makeKeyAndOrderFront:nil];
        content_.makeFirstResponder();
    }
    void orderOut() override {
        [window_ orderOut:nil];
        if (std::exchange(isShown_, false)) {
            previousApplication_.coverGoes();
        }
    }

    void animateAlpha(double target, Duration duration, TimingFunction curve,
                      std::function<void()> completion) override {
        fade_ = std::make_shared<std::function<void()>>(std::move(completion));
        const std::weak_ptr fade(fade_); // expires when a new fade starts or the window is gone
        NSWindow* const window = window_;
        const CAMediaTimingFunctionName name = curve == TimingFunction::easeIn
                                                   ? kCAMediaTimingFunctionEaseIn
                                                   : kCAMediaTimingFunctionEaseInEaseOut;
        [NSAnimationContext
            runAnimationGroup:^(NSAnimationContext* context) {
              context.duration = std::chrono::duration<double>(duration).count();
              context.timingFunction = [CAMediaTimingFunction functionWithName:name];
              window.animator.alphaValue = target;
            }
            completionHandler:^{
              if (const auto ended = fade.lock(); ended != nullptr && *ended) {
                  (*ended)();
              }
            }];
    }

private:
    PreviousApplication& previousApplication_;
    bool isShown_ = false;
    HostedView content_;
    HostingOverlayWindow* window_;
    std::shared_ptr<std::function<void()>> fade_;
};

class MacOverlayWindows final : public OverlayWindows {
public:
    explicit MacOverlayWindows(RunLoop& runLoop) : previousApplication_(runLoop) {}

    /// The frames are in AppKit's window coordinates.
    std::vector<Screen> screens() override {
        std::vector<Screen> screens;
        for (NSScreen* screen in NSScreen.screens) {
            NSNumber* const number = screen.deviceDescription[@"NSScreenNumber"];
            const NSRect frame = screen.frame;
            screens.push_back(
                {.id = number.unsignedIntValue,
                 .frame = {frame.origin.x, frame.origin.y, frame.size.width, frame.size.height}});
        }
        return screens;
    }

    std::unique_ptr<OverlayWindow> makeWindow(const Screen& screen, const Style& style,
                                              std::unique_ptr<View> content) override {
        return std::make_unique<MacOverlayWindow>(screen.frame, style, std::move(content),
                                                  previousApplication_);
    }

    /// Call this after the windows are shown. Event times and the time of the last key before that
    /// moment are both measured on the clock of systemUptime. The system does not document what it
    /// returns if no key has been pressed since login.
    Subscription
    addLocalMonitorForKeyDown(std::function<bool(const KeyDownEvent&)> handler) override {
        const NSTimeInterval shownSince = NSProcessInfo.processInfo.systemUptime;
        const auto typing = std::make_shared<Typing>();
        const CFTimeInterval sinceKey = CGEventSourceSecondsSinceLastEventType(
            kCGEventSourceStateCombinedSessionState, kCGEventKeyDown);
        typing->press(uptime(shownSince - std::min(sinceKey, shownSince)));
        const id monitor =
            [NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown // 1 << 10
                                                  handler:^NSEvent*(NSEvent* event) {
                                                    typing->press(uptime(event.timestamp));
                                                    if (event.ARepeat ||
                                                        typing->isFromBefore(uptime(shownSince))) {
                                                        return nil;
                                                    }
                                                    return handler({event.keyCode}) ? nil : event;
                                                  }];
        return Subscription([monitor] { [NSEvent removeMonitor:monitor]; });
    }

private:
    PreviousApplication previousApplication_;

    static MonotonicTime uptime(NSTimeInterval seconds) {
        return MonotonicTime(
            std::chrono::duration_cast<Duration>(std::chrono::duration<double>(seconds)));
    }
};

} // namespace nocta
