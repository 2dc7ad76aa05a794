#pragma once

#include "display/BrightnessController.h"
#include "display/DisplayService.h"
#include "display/GammaController.h"
#include "platform/Backlight.h"
#include "settings/SettingsManager.h"

namespace nocta {

/// Turns the one brightness value into a backlight level for each built-in display and a gamma
/// dimming for every display. With a backlight, the upper half of the range moves only the
/// backlight, so external displays stay at full brightness there, and the lower half dims every
/// display equally through the gamma tables. Without a backlight, the gamma tables cover the whole
/// range. It has no state.
class UnifiedBrightnessApplier {
public:
    UnifiedBrightnessApplier(SettingsManager& settingsManager, GammaController& gammaController,
                             BrightnessControlling& brightnessController,
                             DisplayService& displayService, Backlight& backlight);
    UnifiedBrightnessApplier(const UnifiedBrightnessApplier&) = delete;
    UnifiedBrightnessApplier& operator=(const UnifiedBrightnessApplier&) = delete;

    static UnifiedBrightnessApplier& shared();

    /// Applies a brightness, expected in 0.0–1.0, at once. Unless `allowFullBlack` is on, it dims
    /// by at most nine tenths; a change of that setting takes effect at the next call.
    void apply(double brightness);

private:
    void setBacklights(float level);

    SettingsManager& settingsManager_;
    GammaController& gammaController_;
    BrightnessControlling& brightnessController_;
    DisplayService& displayService_;
    Backlight& backlight_;
};

} // namespace nocta
