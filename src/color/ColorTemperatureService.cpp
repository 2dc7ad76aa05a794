#include "color/ColorTemperatureService.h"

#include <algorithm>
#include <chrono>
#include <type_traits>
#include <utility>
#include <variant>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr std::int64_t coolestTemperature = 6500;
constexpr double warmthRange = 3800;
constexpr double initialWarmth = 0.5;

constexpr Duration updateInterval = 60s;
constexpr Duration animationDuration = 300ms;
constexpr int animationSteps = 15;

} // namespace

std::int64_t temperatureOfWarmth(double warmth) {
    return checkedDifference(coolestTemperature, truncated(warmth * warmthRange));
}

ColorTemperatureService::ColorTemperatureService(SettingsManager& settingsManager,
                                                 GammaController& gammaController,
                                                 ScheduleService& scheduleService, RunLoop& runLoop)
    : currentTemperature(coolestTemperature), currentWarmth(initialWarmth),
      settingsManager_(settingsManager), gammaController_(gammaController),
      scheduleService_(scheduleService), runLoop_(runLoop) {
    cancellables_.push_back(settingsManager_.autoWarmthEnabled.subscribe([this](bool enabled) {
        const auto context = faultContext();
        if (enabled) {
            animateTo(automaticTemperature(), [this] { startAutomaticMode(); });
        } else {
            updateTimer_.invalidate();
            animateTo(temperatureOfWarmth(settingsManager_.warmthLevel.get()));
        }
    }));
    cancellables_.push_back(settingsManager_.warmthLevel.subscribe([this](double warmth) {
        if (!settingsManager_.autoWarmthEnabled.get()) {
            setWarmth(warmth);
        }
    }));
    const auto showAutomatic = [this](std::int64_t /*kelvin*/) {
        if (settingsManager_.autoWarmthEnabled.get()) {
            show(automaticTemperature());
        }
    };
    cancellables_.push_back(settingsManager_.colorTemperatureDay.subscribe(showAutomatic));
    cancellables_.push_back(settingsManager_.colorTemperatureNight.subscribe(showAutomatic));
}

void ColorTemperatureService::setWarmth(double warmth) {
    warmth = std::max(std::min(warmth, 1.0), 0.0);
    currentWarmth.set(warmth);
    show(temperatureOfWarmth(warmth));
}

void ColorTemperatureService::startAutomaticMode() {
    updateTimer_.invalidate();
    show(automaticTemperature());
    updateTimer_.start(runLoop_, updateInterval, Repeat::yes,
                       [this] { show(automaticTemperature()); });
}

std::int64_t ColorTemperatureService::automaticTemperature() const {
    const auto context = faultContext();
    const auto day = settingsManager_.colorTemperatureDay.get();
    const auto night = settingsManager_.colorTemperatureNight.get();
    const auto part = [&](double progress) {
        return truncated(static_cast<double>(checkedDifference(day, night)) * progress);
    };
    return std::visit(
        [&](const auto& position) -> std::int64_t {
            using Position = std::decay_t<decltype(position)>;
            if constexpr (std::is_same_v<Position, Sunrise>) {
                return checkedSum(night, part(position.progress));
            } else if constexpr (std::is_same_v<Position, Sunset>) {
                return checkedDifference(day, part(position.progress));
            } else {
                return std::is_same_v<Position, Day> ? day : night;
            }
        },
        scheduleService_.currentSunPosition.get());
}

void ColorTemperatureService::animateTo(std::int64_t kelvin, std::function<void()> completion) {
    const auto context = faultContext();
    const auto start = currentTemperature.get();
    const auto way = static_cast<double>(checkedDifference(kelvin, start));
    animationTimer_.start(
        runLoop_, animationSteps, animationDuration / animationSteps,
        [this, start, way](int step) {
            const auto contextOfStep = faultContext();
            show(checkedSum(start, truncated(static_cast<double>(step) / animationSteps * way)));
        },
        std::move(completion));
}

/// The settings that every temperature is calculated from.
FaultContext ColorTemperatureService::faultContext() const {
    return FaultContext({settingsManager_.warmthLevel.origin(),
                         settingsManager_.colorTemperatureDay.origin(),
                         settingsManager_.colorTemperatureNight.origin()});
}

void ColorTemperatureService::show(std::int64_t kelvin) {
    currentTemperature.set(kelvin);
    gammaController_.setTemperature(kelvin);
}

} // namespace nocta
