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

/// The size of a display's current mode, in pixels; on macOS in points.
struct DisplayMode {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool operator==(const DisplayMode&) const = default;
};

/// Posted to the notification center after a display was added, removed or moved, or changed its
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

    /// Writes as many ids as fit into `ids`, and the number written to `count`. If `ids` is empty,
    /// `count` is the number of active displays. On failure `count` is 0. Keeps the two steps and
    /// the output parameter of CGGetActiveDisplayList, for which it stands.
    virtual Status getActiveDisplayList(std::span<DisplayId> ids, std::uint32_t& count) = 0;

    /// Stands for CGDisplayBounds.
    virtual Rect displayBounds(DisplayId display) = 0;

    /// Stands for CGDisplayIsMain.
    virtual bool displayIsMain(DisplayId display) = 0;

    /// Stands for CGDisplayIsBuiltin.
    virtual bool displayIsBuiltin(DisplayId display) = 0;

    /// None if the display has no mode. Stands for CGDisplayCopyDisplayMode.
    virtual std::optional<DisplayMode> displayCopyDisplayMode(DisplayId display) = 0;
};

} // namespace nocta
