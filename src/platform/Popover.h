#pragma once

#include "platform/StatusBar.h"
#include "platform/Views.h"

#include <memory>

namespace nocta {

/// When a popover closes: `transient` closes as soon as the user clicks elsewhere,
/// `applicationDefined` only by `close`.
enum class PopoverBehavior { applicationDefined, transient };

/// The small window beside the status item. Stands for NSPopover.
class Popover {
public:
    virtual ~Popover() = default;

    /// In points.
    virtual void setContentSize(double width, double height) = 0;
    virtual void setBehavior(PopoverBehavior behavior) = 0;
    virtual void setAnimates(bool animates) = 0;

    /// Owns the view until the popover has closed.
    virtual void setContentView(std::unique_ptr<View> view) = 0;

    /// Shows the content beside the item, on the side toward the middle of the screen, entirely on
    /// screen, and gives it the keyboard.
    virtual void show(StatusItem& relativeTo) = 0;
    virtual void close() = 0;
    virtual bool isShown() const = 0;
};

} // namespace nocta
