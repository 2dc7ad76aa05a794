#pragma once

#include "platform/Status.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace nocta {

using DisplayId = std::uint32_t;

/// Origin and size in points, in the coordinate system that all displays share.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    bool operator==(const Rect&) const = default;
};

/// The size of a display's current mode, in pixels (on macOS, in points).
struct DisplayMode {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool operator==(const DisplayMode&) const = default;
};

/// Posted to the notification center after a display is added, removed or moved, or changes its
/// mode.
inline constexpr std::string_view didChangeScreenParametersNotification =
    "ApplicationDidChangeScreenParameters";

/// The active displays.
///
///     std::uint32_t count = 0;
///     displays.getActiveDisplayList({}, count);
///     std::vector<DisplayId> ids(count);
///     displays.getActiveDisplayList(ids, count);
class Displays {
public:
    virtual ~Displays() = default;

    /// Writes as many IDs as fit into `ids`, and sets `count` to the number written. If `ids` is
    /// empty, sets `count` to the number of active displays. On failure, sets `count` to 0.
    /// Corresponds to CGGetActiveDisplayList on macOS, which is also called twice and has the same
    /// output parameter.
    virtual Status getActiveDisplayList(std::span<DisplayId> ids, std::uint32_t& count) = 0;

    /// Corresponds to CGDisplayBounds on macOS.
    virtual Rect displayBounds(DisplayId display) = 0;

    /// Corresponds to CGDisplayIsMain on macOS.
    virtual bool displayIsMain(DisplayId display) = 0;

    /// Corresponds to CGDisplayIsBuiltin on macOS.
    virtual bool displayIsBuiltin(DisplayId display) = 0;

    /// Returns `std::nullopt` if the display has no mode. Corresponds to CGDisplayCopyDisplayMode
    /// on macOS.
    virtual std::optional<DisplayMode> displayCopyDisplayMode(DisplayId display) = 0;
};

} // namespace nocta
