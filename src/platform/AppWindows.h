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
    /// The keyboard stays where it is.
    virtual void orderFrontRegardless() = 0;
};

/// The program's own windows. Stands for NSWindow.
class AppWindows {
public:
    using WindowLevel = std::int64_t;

    // Bits of a style mask.
    static constexpr std::uint32_t titled = 1;
    static constexpr std::uint32_t closable = 2;
    static constexpr std::uint32_t miniaturizable = 4;

    static constexpr WindowLevel normalLevel = 0;
    static constexpr WindowLevel floatingLevel = 3;

    struct Style {
        std::string_view title; ///< in English
        /// Of the content, in points; 0 is what the content wishes. A content that needs more has
        /// it.
        double width = 0;
        double height = 0;
        std::uint32_t styleMask = 0;
        WindowLevel level = normalLevel;
    };

    virtual ~AppWindows() = default;

    /// `onClose` is called from the run loop after the user has closed the window, and may destroy
    /// it.
    virtual std::unique_ptr<AppWindow> makeWindow(const Style& style, std::unique_ptr<View> content,
                                                  std::function<void()> onClose) = 0;
};

} // namespace nocta
