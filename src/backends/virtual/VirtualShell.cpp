#include "backends/virtual/VirtualShell.h"

#include <utility>

namespace nocta {

class VirtualStatusBar::Item final : public StatusItem {
public:
    explicit Item(VirtualStatusBar& bar) : bar_(bar) { bar_.item_ = this; }
    Item(const Item&) = delete;
    Item& operator=(const Item&) = delete;
    ~Item() override { bar_.item_ = nullptr; }

    void setImage(std::string_view name, std::string_view description) override {
        symbolName = name;
        accessibilityDescription = description;
        bar_.trace_.record("setImage " + symbolName);
    }
    void setAction(std::function<void()> newAction) override { action = std::move(newAction); }
    void setMenu(std::unique_ptr<View> newMenu) override { menu = std::move(newMenu); }

    std::string symbolName;
    std::string accessibilityDescription;
    std::function<void()> action;
    std::unique_ptr<View> menu;

private:
    VirtualStatusBar& bar_;
};

void VirtualStatusBar::click() {
    if (item_ != nullptr && item_->action) {
        item_->action();
    }
}

std::string VirtualStatusBar::symbolName() const {
    return item_ == nullptr ? "" : item_->symbolName;
}

std::string VirtualStatusBar::accessibilityDescription() const {
    return item_ == nullptr ? "" : item_->accessibilityDescription;
}

std::unique_ptr<StatusItem> VirtualStatusBar::statusItem() {
    trace_.record("statusItem");
    return isFull ? nullptr : std::make_unique<Item>(*this);
}

void VirtualPopover::clickElsewhere() {
    if (behavior_ == PopoverBehavior::transient) {
        close();
    }
}

void VirtualPopover::setContentSize(double width, double height) {
    trace_.record("popover setContentSize " + std::to_string(static_cast<int>(width)) + " " +
                  std::to_string(static_cast<int>(height)));
}

void VirtualPopover::setBehavior(PopoverBehavior behavior) {
    behavior_ = behavior;
}

void VirtualPopover::setAnimates(bool animates) {
    trace_.record(animates ? "popover setAnimates true" : "popover setAnimates false");
}

void VirtualPopover::setContentView(std::unique_ptr<View> view) {
    view_ = std::move(view);
}

void VirtualPopover::show(StatusItem& /*relativeTo*/) {
    trace_.record("popover show");
    isShown_ = true;
}

void VirtualPopover::close() {
    trace_.record("popover close");
    isShown_ = false;
    view_.reset();
}

void VirtualApplication::launch(ApplicationDelegate& delegate) {
    delegate_ = &delegate;
    runLoop_.start();
    delegate.applicationDidFinishLaunching();
}

int VirtualApplication::run(ApplicationDelegate& delegate) {
    launch(delegate);
    if (session) {
        session();
    }
    terminate();
    return 0;
}

void VirtualApplication::terminate() {
    if (auto* const delegate = std::exchange(delegate_, nullptr)) {
        delegate->applicationWillTerminate();
        runLoop_.stop();
    }
}

} // namespace nocta
