#pragma once

#include "platform/Displays.h"

namespace nocta {

/// The hardware brightness of built-in displays, 0.0–1.0. Both functions fail for other displays.
class Backlight {
public:
    virtual ~Backlight() = default;

    /// Does not change `level` on failure. Corresponds to DisplayServicesGetBrightness on macOS,
    /// which has the same status and output parameter.
    virtual Status getBrightness(DisplayId display, float& level) = 0;

    /// Corresponds to DisplayServicesSetBrightness on macOS.
    virtual Status setBrightness(DisplayId display, float level) = 0;
};

} // namespace nocta
