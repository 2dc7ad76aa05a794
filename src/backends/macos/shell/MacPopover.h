#pragma once

#include "backends/macos/Observation.h"
#include "backends/macos/shell/HostedView.h"
#include "backends/macos/shell/MacStatusBar.h"
#include "base/Deferred.h"
#include "platform/Popover.h"

#import <AppKit/AppKit.h>
#include <utility>

namespace nocta {

/// The popover below the status item. It opens without making Nocta the active program, so that a
/// meeting stays in front. AppKit does not document which interactions close a transient popover,
/// especially for an inactive program. So while the popover is shown, this class watches for two
/// interactions that must close it.
class MacPopover final : public Popover {
public:
    explicit MacPopover(RunLoop& runLoop)
        : dropContent_(runLoop, [this] {
              if (!isShown()) { // the popover may have been reopened
                  setContentView(nullptr);
              }
          }) {}
    MacPopover(const MacPopover&) = delete;
    MacPopover& operator=(const MacPopover&) = delete;
    ~MacPopover() override { [popover_ close]; }

    void setContentSize(double width, double height) override {
        contentSize_ = NSMakeSize(width, height);
    }
    void setBehavior(PopoverBehavior behavior) override {
        popover_.behavior = behavior == PopoverBehavior::transient
                                ? NSPopoverBehaviorTransient
                                : NSPopoverBehaviorApplicationDefined;
    }
    void setAnimates(bool animates) override { popover_.animates = animates; }

    /// If the content needs more than the set size, now or later, the popover grows.
    void setContentView(std::unique_ptr<View> view) override {
        const auto old = std::exchange(content_, nullptr); // destroyed after its controller
        if (view == nullptr) {
            popover_.contentViewController = nil;
            return;
        }
        content_ =
            std::make_unique<HostedView>(std::move(view), contentSize_, HostedView::Kind::clear);
        NSViewController* const controller = [[NSViewController alloc] init];
        controller.view = content_->view();
        popover_.contentViewController = controller;
        fitContent();
        content_->contentChanged = [this] { fitContent(); };
    }

    /// Opens the popover below its button in the menu bar.
    void show(StatusItem& relativeTo) override {
        NSStatusBarButton* const button = static_cast<MacStatusItem&>(relativeTo).button();
        if (button == nil || content_ == nullptr) {
            return;
        }
        fitContent();
        [popover_ showRelativeToRect:button.bounds ofView:button preferredEdge:NSRectEdgeMinY];
        [content_->view().window makeKeyWindow];
        content_->makeFirstResponder();
        watch(button.window);
    }
    void close() override { [popover_ performClose:nil]; }
    bool isShown() const override { return popover_.shown; }

private:
    /// The menu bar is light or dark depending on what is behind it, and a popover takes its
    /// appearance from its anchor. But Qt draws the content in the colors of the program's
    /// appearance, so the popover must use that appearance too.
    void fitContent() {
        popover_.appearance = NSApp.effectiveAppearance;
        popover_.contentSize = content_->fittingSize();
    }

    /// Closes the popover when another window of this program becomes key, and when the user clicks
    /// in another program, for example on its menu bar item. AppKit does not report these clicks
    /// otherwise. On some systems, a click on this program's own item is reported here too. This
    /// function ignores such a click, because the item's action closes the popover.
    void watch(NSWindow* item) {
        didBecomeKey_ =
            observe(NSNotificationCenter.defaultCenter, NSWindowDidBecomeKeyNotification, nil,
                    ^(NSNotification* notification) {
                      if (content_ != nullptr && notification.object != item &&
                          notification.object != content_->view().window) {
                          close();
                      }
                    });
        const id monitor =
            [NSEvent addGlobalMonitorForEventsMatchingMask:NSEventMaskLeftMouseDown |
                                                           NSEventMaskRightMouseDown |
                                                           NSEventMaskOtherMouseDown
                                                   handler:^(NSEvent* /*event*/) {
                                                     if (!isOnItem(NSEvent.mouseLocation, item)) {
                                                         close();
                                                     }
                                                   }];
        if (monitor != nil) {
            clicks_ = Subscription([monitor] { [NSEvent removeMonitor:monitor]; });
        }
    }

    /// Whether the mouse is on the item, up to the edge of the screen.
    static bool isOnItem(NSPoint mouse, NSWindow* item) {
        NSRect area = item.frame;
        if (NSScreen* const screen = item.screen) {
            area.size.height = NSMaxY(screen.frame) - NSMinY(area);
        }
        return NSMouseInRect(mouse, area, NO);
    }

    void didClose() {
        if (!isShown()) {
            didBecomeKey_.cancel();
            clicks_.cancel();
        }
        dropContent_.request(); // later, because a button in the content may have closed it
    }

    NSPopover* popover_ = [[NSPopover alloc] init];
    NSSize contentSize_ = NSZeroSize;
    std::unique_ptr<HostedView> content_;
    Deferred dropContent_;
    Subscription didBecomeKey_; ///< while the popover is shown
    Subscription clicks_;       ///< while the popover is shown
    Subscription didClose_ =
        observe(NSNotificationCenter.defaultCenter, NSPopoverDidCloseNotification, popover_,
                ^(NSNotification* /*notification*/) {
                  didClose();
                });
};

} // namespace nocta
