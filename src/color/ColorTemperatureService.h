#pragma once

#include "base/Checked.h"
#include "base/Published.h"
#include "base/RunLoop.h"
#include "base/SteppedAnimation.h"
#include "base/Timer.h"
#include "color/ScheduleService.h"
#include "display/GammaController.h"
#include "settings/SettingsManager.h"

#include <cstdint>
#include <functional>

namespace nocta {

/// Returns the temperature in kelvin for a manual warmth in 0.0–1.0: 6500 − 3800 × warmth.
std::int64_t temperatureOfWarmth(double warmth);

/// Sets the color temperature of the displays. In manual mode it follows the warmth slider, in
/// automatic mode the daylight schedule. Switching between the modes takes 0.3 seconds; everything
/// else takes effect immediately. The service exists for the lifetime of the process.
class ColorTemperatureService {
public:
    ColorTemperatureService(SettingsManager& settingsManager, GammaController& gammaController,
                            ScheduleService& scheduleService, RunLoop& runLoop);
    ColorTemperatureService(const ColorTemperatureService&) = delete;
    ColorTemperatureService& operator=(const ColorTemperatureService&) = delete;

    static ColorTemperatureService& shared();

    Published<std::int64_t> currentTemperature; ///< kelvin
    Published<double> currentWarmth;            ///< 0.0 coolest – 1.0 warmest

    /// For manual mode: applies the temperature for `warmth`, which is clamped to 0.0–1.0. Does not
    /// stop a running transition.
    void setWarmth(double warmth);

    /// Applies the temperature for the current time, and updates it every minute.
    void startAutomaticMode();

    /// Returns the temperature in kelvin for the current position of the sun, without applying it.
    std::int64_t automaticTemperature() const;

    /// Changes the temperature to `kelvin` in 15 equal steps. Replaces a running transition, whose
    /// completion is then never called.
    void animateTo(std::int64_t kelvin, std::function<void()> completion = {});

private:
    FaultContext faultContext() const;
    void show(std::int64_t kelvin);

    SettingsManager& settingsManager_;
    GammaController& gammaController_;
    ScheduleService& scheduleService_;
    RunLoop& runLoop_;
    Timer updateTimer_;
    SteppedAnimation animationTimer_;
    Cancellables cancellables_;
};

} // namespace nocta
