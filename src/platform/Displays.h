#pragma once

#include "platform/Status.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace nocta {

using DisplayId = std::uint32_t;

/// Origin and size in points, in the coordinates that all displays share.
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

/// Posted on the notification centre after a display came, went, moved or changed its mode.
inline constexpr std::string_view didChangeScreenParametersNotification =
    "ApplicationDidChangeScreenParameters";

/// The displays that show a picture now.
class Displays {
public:
    virtual ~Displays() = default;

    /// Writes as many ids as fit into `ids` and the number written to `count`; an empty `ids`
    /// asks for the number of active displays. After a failure `count` is 0. The two calls and the
    /// reference that is filled keep the shape of CGGetActiveDisplayList, for which it stands, as
    /// the service asks in the same two steps everywhere.
    virtual Status getActiveDisplayList(std::span<DisplayId> ids, std::uint32_t& count) = 0;

    /// Stands for CGDisplayBounds.
    virtual Rect displayBounds(DisplayId display) = 0;

    /// Stands for CGDisplayIsMain.
    virtual bool displayIsMain(DisplayId display) = 0;

    /// Stands for CGDisplayIsBuiltin.
    virtual bool displayIsBuiltin(DisplayId display) = 0;

    /// None where the display has no mode. Stands for CGDisplayCopyDisplayMode.
    virtual std::optional<DisplayMode> displayCopyDisplayMode(DisplayId display) = 0;
};

} // namespace nocta
