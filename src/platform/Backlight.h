#pragma once

#include "platform/Displays.h"

namespace nocta {

/// The hardware brightness of built-in displays, 0.0–1.0. Every other display answers failure.
class Backlight {
public:
    virtual ~Backlight() = default;

    /// Leaves `level` as it was after a failure. The status and the reference that is filled keep
    /// the shape of DisplayServicesGetBrightness, for which it stands.
    virtual Status getBrightness(DisplayId display, float& level) = 0;

    /// Stands for DisplayServicesSetBrightness.
    virtual Status setBrightness(DisplayId display, float level) = 0;
};

} // namespace nocta
