#include "backends/linux/kde/NightLightGammaOutput.h"

#include "base/WhitePoint.h"

namespace nocta {

Status NightLightGammaOutput::setDisplayTransferByTable(DisplayId display,
                                                        std::span<const float> red,
                                                        std::span<const float> green,
                                                        std::span<const float> blue) {
    const auto status = tint_->setDisplayTransferByTable(display, red, green, blue);
    if (status == statusSuccess) {
        nightLight_->setTemperature(
            temperatureOf({.red = red.back(), .green = green.back(), .blue = blue.back()}));
    }
    return status;
}

void NightLightGammaOutput::displayRestoreColorSyncSettings() {
    tint_->displayRestoreColorSyncSettings();
    nightLight_->restore();
}

} // namespace nocta
