#pragma once

#include "platform/Views.h"

#include <functional>
#include <memory>
#include <string_view>

namespace nocta {

/// An icon in the desktop's status bar. Destroying it removes the icon.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    /// Shows the symbol of that name as a template image, which the desktop tints.
    virtual void setImage(std::string_view symbolName,
                          std::string_view accessibilityDescription) = 0;

    /// A click on the item calls `action`.
    virtual void setAction(std::function<void()> action) = 0;

    /// The menu for a right click or a long press, on desktops whose status items have one. The
    /// item owns the view.
    virtual void setMenu(std::unique_ptr<View> menu) = 0;
};

/// The desktop's status bar: menu bar, system tray or panel.
class StatusBar {
public:
    virtual ~StatusBar() = default;

    /// An item of variable length, or none if the desktop has no status bar.
    /// Stands for NSStatusBar's statusItemWithLength:.
    virtual std::unique_ptr<StatusItem> statusItem() = 0;
};

} // namespace nocta
