#pragma once

#include "backends/virtual/Trace.h"
#include "backends/virtual/VirtualRunLoop.h"
#include "platform/Application.h"
#include "platform/Popover.h"
#include "platform/StatusBar.h"

#include <functional>
#include <memory>
#include <string>

namespace nocta {

/// A status bar with room for one item.
class VirtualStatusBar final : public StatusBar {
public:
    explicit VirtualStatusBar(Trace& trace) : trace_(trace) {}

    // For tests: what the user does and sees.
    void click();
    bool hasItem() const { return item_ != nullptr; }
    std::string symbolName() const;
    std::string accessibilityDescription() const;
    bool isFull = false;
    bool isShown = true;

    // For the program: the functions of the port.
    bool isAvailable() const override { return isShown; }
    std::unique_ptr<StatusItem> statusItem() override;

private:
    class Item;

    Trace& trace_;
    Item* item_ = nullptr;
};

class VirtualPopover final : public Popover {
public:
    explicit VirtualPopover(Trace& trace) : trace_(trace) {}

    /// Clicks outside the popover, which closes it if it is transient.
    void clickElsewhere();

    View* contentView() const { return view_.get(); }

    void setContentSize(double width, double height) override;
    void setBehavior(PopoverBehavior behavior) override;
    void setAnimates(bool animates) override;
    void setContentView(std::unique_ptr<View> view) override;
    void show(StatusItem& relativeTo) override;
    void close() override;
    bool isShown() const override { return isShown_; }

private:
    Trace& trace_;
    PopoverBehavior behavior_ = PopoverBehavior::applicationDefined;
    bool isShown_ = false;
    std::unique_ptr<View> view_;
};

/// A process that a test controls: `run` launches the program, calls `session` and terminates the
/// program.
class VirtualApplication final : public Application {
public:
    VirtualApplication(Trace& trace, VirtualRunLoop& runLoop) : trace_(trace), runLoop_(runLoop) {}

    /// What the user does between launch and quit.
    std::function<void()> session;

    void launch(ApplicationDelegate& delegate);
    void startAgain() { delegate_->applicationDidReopen(); }
    void pressPreferencesKey() { delegate_->showPreferencesWindow(); }

    int run(ApplicationDelegate& delegate) override;
    void activateIgnoringOtherApps() override { trace_.record("activateIgnoringOtherApps"); }
    void terminate() override;

private:
    Trace& trace_;
    VirtualRunLoop& runLoop_;
    ApplicationDelegate* delegate_ = nullptr;
};

} // namespace nocta
