#pragma once

#include "backends/macos/Observation.h"
#include "backends/macos/shell/HostedView.h"
#include "backends/macos/shell/MacStatusBar.h"
#include "platform/Popover.h"

#import <AppKit/AppKit.h>
#include <utility>

namespace nocta {

class MacPopover final : public Popover {
public:
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

    void setContentView(std::unique_ptr<View> view) override {
        popover_.contentViewController = nil;
        content_.reset();
        if (view != nullptr) {
            content_ = std::make_unique<HostedView>(std::move(view), contentSize_,
                                                    HostedView::Kind::clear);
            NSViewController* const controller = [[NSViewController alloc] init];
            controller.view = content_->view();
            popover_.contentViewController = controller;
            popover_.contentSize = content_->fittingSize();
        }
    }

    /// A button in the menu bar has its popover below.
    void show(StatusItem& relativeTo) override {
        NSStatusBarButton* const button = static_cast<MacStatusItem&>(relativeTo).button();
        if (button == nil || content_ == nullptr) {
            return;
        }
        [popover_ showRelativeToRect:button.bounds ofView:button preferredEdge:NSRectEdgeMinY];
        [content_->view().window makeKeyWindow];
        content_->makeFirstResponder();
    }
    void close() override { [popover_ performClose:nil]; }
    bool isShown() const override { return popover_.shown; }

private:
    /// Later, as it may be a button of the content that closes.
    void dropContent() {
        dispatch_async(dispatch_get_main_queue(), ^{
          if (!popover_.shown) { // it may be open again by now
              setContentView(nullptr);
          }
        });
    }
    NSPopover* popover_ = [[NSPopover alloc] init];
    NSSize contentSize_ = NSZeroSize;
    std::unique_ptr<HostedView> content_;
    Subscription didClose_ =
        observe(NSNotificationCenter.defaultCenter, NSPopoverDidCloseNotification, popover_,
                ^(NSNotification* /*notification*/) {
                  dropContent();
                });
};

} // namespace nocta
