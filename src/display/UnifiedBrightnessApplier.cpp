#include "display/UnifiedBrightnessApplier.h"

#include <algorithm>

namespace nocta {

namespace {

constexpr double split = 0.5; ///< from here to 1, only the backlight changes

constexpr float lowestBacklight = 0.1F;
constexpr float highestBacklight = 1.0F;

constexpr float fullBlack = 1.0F;
constexpr float faintGlow = 0.9F;

float backlightLevel(double brightness) {
    const auto level = static_cast<float>((brightness - split) * 2 * 0.9 + 0.1);
    return std::max(std::min(level, highestBacklight), lowestBacklight);
}

} // namespace

UnifiedBrightnessApplier::UnifiedBrightnessApplier(SettingsManager& settingsManager,
                                                   GammaController& gammaController,
                                                   BrightnessControlling& brightnessController,
                                                   DisplayService& displayService,
                                                   Backlight& backlight)
    : settingsManager_(settingsManager), gammaController_(gammaController),
      brightnessController_(brightnessController), displayService_(displayService),
      backlight_(backlight) {}

void UnifiedBrightnessApplier::apply(double brightness) {
    const auto ceiling = settingsManager_.allowFullBlack.get() ? fullBlack : faintGlow;
    const auto dimmedBy = [&](double amount) {
        gammaController_.setDimming(std::min(ceiling, static_cast<float>(amount)));
    };

    if (std::ranges::none_of(displayService_.activeDisplays(),
                             &DisplayInfo::supportsBrightnessControl)) {
        dimmedBy(1 - brightness);
    } else if (brightness >= split) {
        setBacklights(backlightLevel(brightness));
        gammaController_.setDimming(0);
    } else {
        setBacklights(lowestBacklight);
        dimmedBy(1 - 2 * brightness);
    }
}

void UnifiedBrightnessApplier::setBacklights(float level) {
    if (!brightnessController_.isAvailable()) {
        return;
    }
    for (const auto& display : displayService_.activeDisplays()) {
        if (display.supportsBrightnessControl) {
            backlight_.setBrightness(display.id, level);
        }
    }
}

} // namespace nocta
