#pragma once

#include "backends/macos/Strings.h"
#include "platform/StatusBar.h"

#import <AppKit/AppKit.h>
#include <utility>

/// Receives clicks on the item's button.
@interface NoctaStatusItemTarget : NSObject {
@public
    std::function<void()> action;
}
- (void)togglePopover:(id)sender;
@end

namespace nocta {

/// The item has no menu: a click opens the popover, which contains everything that a menu would.
class MacStatusItem final : public StatusItem {
public:
    MacStatusItem() {
        item_.button.target = target_;
        item_.button.action = @selector(togglePopover:);
    }
    MacStatusItem(const MacStatusItem&) = delete;
    MacStatusItem& operator=(const MacStatusItem&) = delete;
    ~MacStatusItem() override { [NSStatusBar.systemStatusBar removeStatusItem:item_]; }

    void setImage(std::string_view symbolName, std::string_view accessibilityDescription) override {
        NSImage* const image =
            [NSImage imageWithSystemSymbolName:nsString(symbolName)
                      accessibilityDescription:nsString(accessibilityDescription)];
        [image setTemplate:YES];
        item_.button.image = image;
    }
    void setAction(std::function<void()> action) override { target_->action = std::move(action); }
    void setMenu(std::unique_ptr<View> /*menu*/) override {}

    NSStatusBarButton* button() const { return item_.button; }

private:
    NSStatusItem* item_ =
        [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
    NoctaStatusItemTarget* target_ = [[NoctaStatusItemTarget alloc] init]; // retained
};

class MacStatusBar final : public StatusBar {
public:
    bool isAvailable() const override { return true; }
    std::unique_ptr<StatusItem> statusItem() override { return std::make_unique<MacStatusItem>(); }
};

} // namespace nocta
