#pragma once

#include "display/BrightnessController.h"
#include "display/DisplayService.h"
#include "display/GammaController.h"
#include "platform/Backlight.h"
#include "settings/SettingsManager.h"

namespace nocta {

/// Converts the single brightness value into a backlight level for each built-in display and gamma
/// dimming for every display. If there is a backlight, the upper half of the range changes only the
/// backlight, so external displays stay at full brightness. The lower half dims every display
/// equally through the gamma tables. Without a backlight, the gamma tables cover the whole range.
/// The class is stateless.
class UnifiedBrightnessApplier {
public:
    UnifiedBrightnessApplier(SettingsManager& settingsManager, GammaController& gammaController,
                             BrightnessControlling& brightnessController,
                             DisplayService& displayService, Backlight& backlight);
    UnifiedBrightnessApplier(const UnifiedBrightnessApplier&) = delete;
    UnifiedBrightnessApplier& operator=(const UnifiedBrightnessApplier&) = delete;

    static UnifiedBrightnessApplier& shared();

    /// Applies a brightness (0.0–1.0) immediately. Unless `allowFullBlack` is on, it dims by at
    /// most 90%. A change to that setting takes effect on the next call.
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
