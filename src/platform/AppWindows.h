#pragma once

#include "platform/Views.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

namespace nocta {

/// A window with a title bar. It is made centred and not on screen; its destruction closes it.
class AppWindow {
public:
    virtual ~AppWindow() = default;

    virtual void makeKeyAndOrderFront() = 0;
};

/// The program's own windows. Stands for NSWindow.
class AppWindows {
public:
    using WindowLevel = std::int64_t;

    struct Style {
        std::string_view title; ///< in English
        /// Of the content, in points; 0 is what the content wishes. A content that needs more has
        /// it.
        double width = 0;
        double height = 0;
        /// A mask of 1, titled, 2, closable, and 4, can be minimised.
        std::uint32_t styleMask = 0;
        /// 0 is normal, 3 floats above the normal ones.
        WindowLevel level = 0;
    };

    virtual ~AppWindows() = default;

    /// `onClose` is called from the run loop after the user has closed the window, and may destroy
    /// it.
    virtual std::unique_ptr<AppWindow> makeWindow(const Style& style, std::unique_ptr<View> content,
                                                  std::function<void()> onClose) = 0;
};

} // namespace nocta
