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

/// The temperature of a manual warmth of 0.0 to 1.0: 6500 K less 3800 K times it.
std::int64_t temperatureOfWarmth(double warmth);

/// Decides the colour temperature that the displays show: by the warmth slider in manual mode, by
/// the daylight schedule in automatic mode. Switching between the modes glides over 0.3 seconds;
/// everything else acts at once. It lives as long as the process.
class ColorTemperatureService {
public:
    ColorTemperatureService(SettingsManager& settingsManager, GammaController& gammaController,
                            ScheduleService& scheduleService, RunLoop& runLoop);
    ColorTemperatureService(const ColorTemperatureService&) = delete;
    ColorTemperatureService& operator=(const ColorTemperatureService&) = delete;

    static ColorTemperatureService& shared();

    Published<std::int64_t> currentTemperature; ///< kelvin
    Published<double> currentWarmth;            ///< 0.0 coolest – 1.0 warmest

    /// The manual path: 6500 K less 3800 K times the warmth, which is clamped to 0.0–1.0. It does
    /// not stop a transition that is running.
    void setWarmth(double warmth);

    /// Applies the temperature of the moment, and again every minute.
    void startAutomaticMode();

    /// Kelvin for the present position of the sun; changes nothing.
    std::int64_t automaticTemperature() const;

    /// Glides from where the temperature is now in 15 equal steps, replacing a glide that is
    /// running, whose completion never runs.
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
