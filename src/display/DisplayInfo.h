#pragma once

#include "platform/Displays.h"

#include <string>

namespace nocta {

/// One active display, as it was when the list was read.
struct DisplayInfo {
    DisplayId id = 0;
    std::string name;
    bool isBuiltIn = false;
    bool isMain = false;
    Rect bounds; ///< points, in the coordinates that all displays share
    float currentBrightness = 1.0F;
    bool supportsBrightnessControl = false; ///< has a backlight: taken to be true of built-in ones

    bool operator==(const DisplayInfo&) const = default;
};

} // namespace nocta
