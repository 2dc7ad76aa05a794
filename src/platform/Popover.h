#pragma once

#include "platform/StatusBar.h"
#include "platform/Views.h"

#include <memory>

namespace nocta {

/// When a popover closes by itself: `transient`, as soon as the user clicks elsewhere.
enum class PopoverBehavior { applicationDefined, transient };

/// The small window beside the status item. Stands for NSPopover.
class Popover {
public:
    virtual ~Popover() = default;

    /// In points.
    virtual void setContentSize(double width, double height) = 0;
    virtual void setBehavior(PopoverBehavior behavior) = 0;
    virtual void setAnimates(bool animates) = 0;

    /// Takes the view and keeps it until the popover has closed.
    virtual void setContentView(std::unique_ptr<View> view) = 0;

    /// Shows the content next to the item, on the edge that faces into the screen, wholly on
    /// screen, and gives it the keyboard.
    virtual void show(StatusItem& relativeTo) = 0;
    virtual void close() = 0;
    virtual bool isShown() const = 0;
};

} // namespace nocta
