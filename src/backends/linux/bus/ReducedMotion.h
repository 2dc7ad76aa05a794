#pragma once

#include "backends/linux/bus/PortalSettings.h"

namespace nocta {

/// Whether the user wishes for less movement on the screen, by the settings that the desktop's
/// portal tells: the wish itself, or that animations are off. False until it is known; nothing
/// waits for the portal. Changes are followed.
class ReducedMotion {
public:
    ReducedMotion();

    bool isRequested() const { return isRequested_; }

private:
    bool isRequested_ = false;
    PortalSettings settings_;
};

} // namespace nocta
