#pragma once

#include "backends/linux/bus/PortalSettings.h"

namespace nocta {

/// Whether the user wants less movement on the screen. The desktop's portal reports either a
/// setting for reduced motion or that animations are off. The value is false until the portal
/// answers, and no call waits for the answer. Later changes update the value.
class ReducedMotion {
public:
    ReducedMotion();

    bool isRequested() const { return isRequested_; }

private:
    bool isRequested_ = false;
    PortalSettings settings_;
};

} // namespace nocta
