#pragma once

#include "platform/Displays.h"

#include <string>

namespace nocta {

/// An active display, as it was when the list was read.
struct DisplayInfo {
    DisplayId id = 0;
    std::string name;
    bool isBuiltIn = false;
    bool isMain = false;
    Rect bounds; ///< points, in the coordinate system that all displays share
    float currentBrightness = 1.0F;
    bool supportsBrightnessControl = false; ///< has a backlight; assumed if built in

    bool operator==(const DisplayInfo&) const = default;
};

} // namespace nocta
