#pragma once

#include "platform/Displays.h"

namespace nocta {

/// The hardware brightness of built-in displays, 0.0–1.0. Both functions fail for other displays.
class Backlight {
public:
    virtual ~Backlight() = default;

    /// Does not change `level` on failure. The status and the output parameter keep the shape of
    /// DisplayServicesGetBrightness, for which it stands.
    virtual Status getBrightness(DisplayId display, float& level) = 0;

    /// Stands for DisplayServicesSetBrightness.
    virtual Status setBrightness(DisplayId display, float level) = 0;
};

} // namespace nocta
