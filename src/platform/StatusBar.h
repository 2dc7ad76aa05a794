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

    /// Shows the symbol with this name as a template image, which the desktop tints.
    virtual void setImage(std::string_view symbolName,
                          std::string_view accessibilityDescription) = 0;

    /// Calls `action` when the user clicks the item.
    virtual void setAction(std::function<void()> action) = 0;

    /// Sets the menu for a right click or a long press, on desktops whose status items have a menu.
    /// The item owns the view.
    virtual void setMenu(std::unique_ptr<View> menu) = 0;
};

/// The desktop's status bar: a menu bar, system tray or panel.
class StatusBar {
public:
    virtual ~StatusBar() = default;

    /// Whether the user can see status items now. A tray may start later than the program.
    virtual bool isAvailable() const = 0;

    /// Makes an item of variable length. Returns null if the desktop has no status bar. Corresponds
    /// to NSStatusBar's statusItemWithLength: on macOS.
    virtual std::unique_ptr<StatusItem> statusItem() = 0;
};

} // namespace nocta
