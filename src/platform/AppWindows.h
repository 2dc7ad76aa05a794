#pragma once

#include "platform/Views.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

namespace nocta {

/// A window with a title bar. It is created centered and hidden; destroying it closes it.
class AppWindow {
public:
    virtual ~AppWindow() = default;

    virtual void makeKeyAndOrderFront() = 0;
    /// Shows the window without giving it keyboard focus.
    virtual void orderFrontRegardless() = 0;
};

/// The program's own windows. Corresponds to NSWindow on macOS.
class AppWindows {
public:
    using WindowLevel = std::int64_t;

    // The bits of a style mask.
    static constexpr std::uint32_t titled = 1;
    static constexpr std::uint32_t closable = 2;
    static constexpr std::uint32_t miniaturizable = 4;

    static constexpr WindowLevel normalLevel = 0;
    static constexpr WindowLevel floatingLevel = 3;

    struct Style {
        std::string_view title; ///< in English
        /// The size of the content in points; 0 means its preferred size. The window is larger if
        /// the content needs more space.
        double width = 0;
        double height = 0;
        std::uint32_t styleMask = 0;
        WindowLevel level = normalLevel;
    };

    virtual ~AppWindows() = default;

    /// After the user has closed the window, `onClose` is called from the run loop. `onClose` may
    /// destroy the window.
    virtual std::unique_ptr<AppWindow> makeWindow(const Style& style, std::unique_ptr<View> content,
                                                  std::function<void()> onClose) = 0;
};

} // namespace nocta
