#pragma once

#include "platform/Views.h"

#include <functional>
#include <memory>
#include <string_view>

namespace nocta {

/// One icon in the desktop's status bar; it goes when this is destroyed.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    /// Shows the symbol of that name as a template image, that is, tinted by the desktop.
    virtual void setImage(std::string_view symbolName,
                          std::string_view accessibilityDescription) = 0;

    /// What a click on the item does.
    virtual void setAction(std::function<void()> action) = 0;

    /// The menu of a desktop whose status items have one, at a right click or a long press. It
    /// takes the view and keeps it.
    virtual void setMenu(std::unique_ptr<View> menu) = 0;
};

/// The desktop's status bar: menu bar, system tray or panel.
class StatusBar {
public:
    virtual ~StatusBar() = default;

    /// An item of variable length, or none where the desktop gives none.
    /// Stands for NSStatusBar's statusItemWithLength:.
    virtual std::unique_ptr<StatusItem> statusItem() = 0;
};

} // namespace nocta
