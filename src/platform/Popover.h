#pragma once

#include "platform/StatusBar.h"
#include "platform/Views.h"

#include <memory>

namespace nocta {

/// When a popover closes. An `applicationDefined` popover closes only when `close` is called; a
/// `transient` popover also closes when the user clicks outside it.
enum class PopoverBehavior { applicationDefined, transient };

/// The small window next to the status item. Corresponds to NSPopover on macOS.
class Popover {
public:
    virtual ~Popover() = default;

    /// The size in points.
    virtual void setContentSize(double width, double height) = 0;
    virtual void setBehavior(PopoverBehavior behavior) = 0;
    virtual void setAnimates(bool animates) = 0;

    /// The popover owns the view until the popover has closed.
    virtual void setContentView(std::unique_ptr<View> view) = 0;

    /// Shows the content next to the item, on the side that faces the middle of the screen, and
    /// gives it keyboard focus. The whole popover is on screen.
    virtual void show(StatusItem& relativeTo) = 0;
    virtual void close() = 0;
    virtual bool isShown() const = 0;
};

} // namespace nocta
