#include "color/ScheduleService.h"

#include "base/Calendar.h"

#include <chrono>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr Duration updateInterval = 60s;
constexpr Duration transitionHalfWidth = 15min;
constexpr Duration locationMaximumAge = 24h;

constexpr std::chrono::minutes defaultSunrise = 6h + 30min;
constexpr std::chrono::minutes defaultSunset = 18h + 30min;

std::optional<WallTime> instantAt(CalendarDay day, std::chrono::minutes time) {
    return Calendar::instantAt(day, static_cast<int>(time / 1h),
                               static_cast<int>(time % 1h / 1min));
}

/// Returns the progress of the transition around `event`, or `std::nullopt` outside the transition.
/// Both ends are part of the transition.
std::optional<double> progress(WallTime now, WallTime event) {
    const auto start = event - transitionHalfWidth;
    const auto end = event + transitionHalfWidth;
    if (now < start || now > end) {
        return std::nullopt;
    }
    return std::chrono::duration<double>(now - start) / std::chrono::duration<double>(end - start);
}

SunPosition positionAt(WallTime now, std::optional<WallTime> sunrise,
                       std::optional<WallTime> sunset) {
    if (!sunrise || !sunset) {
        return Day{};
    }
    if (now < *sunrise - transitionHalfWidth || now > *sunset + transitionHalfWidth) {
        return Night{};
    }
    if (const auto rising = progress(now, *sunrise)) {
        return Sunrise{*rising};
    }
    if (const auto setting = progress(now, *sunset)) {
        return Sunset{*setting};
    }
    return Day{};
}

} // namespace

ScheduleService::ScheduleService(LocationProviding& locationService, RunLoop& runLoop)
    : currentSunPosition(Day{}), locationService_(locationService), runLoop_(runLoop) {
    cancellables_.push_back(
        locationService_.currentLocation.subscribe([this](const std::optional<Location>& location) {
            if (location) {
                calculateTimes(location);
            }
        }));
}

void ScheduleService::start() {
    const auto now = runLoop_.wallNow();
    lastCalculationDate_ = now;
    lastLocationRefresh_ = now;
    calculateTimes();
    updateTimer_.start(runLoop_, updateInterval, Repeat::yes, [this] { updateSunPosition(); });
}

void ScheduleService::calculateTimes(std::optional<Location> location) {
    if (!location) {
        location = locationService_.currentLocation.get();
    }
    if (!location) {
        useDefaultTimes();
        return;
    }
    const auto now = runLoop_.wallNow();
    const auto times = sunCalculator_.calculate(now, location->latitude, location->longitude, now);
    sunriseTime.set(times.sunrise);
    sunsetTime.set(times.sunset);
    updateSunPosition();
}

void ScheduleService::useDefaultTimes() {
    const auto today = Calendar::dayOf(runLoop_.wallNow());
    if (const auto sunrise = instantAt(today, defaultSunrise)) {
        sunriseTime.set(sunrise);
    }
    if (const auto sunset = instantAt(today, defaultSunset)) {
        sunsetTime.set(sunset);
    }
    updateSunPosition();
}

void ScheduleService::updateSunPosition() {
    const auto now = runLoop_.wallNow();
    if (!lastCalculationDate_ || Calendar::dayOf(*lastCalculationDate_) != Calendar::dayOf(now)) {
        // Set this first, because calculateTimes calls this function again.
        lastCalculationDate_ = now;
        calculateTimes();
    }
    if (lastLocationRefresh_ && now - *lastLocationRefresh_ > locationMaximumAge) {
        refreshLocation();
    }

    currentSunPosition.set(positionAt(now, sunriseTime.get(), sunsetTime.get()));
}

void ScheduleService::refreshLocation() {
    if (locationService_.authorizationStatus.get() == AuthorizationStatus::authorized) {
        locationService_.locationManager().startUpdatingLocation();
    }
    lastLocationRefresh_ = runLoop_.wallNow();
}

} // namespace nocta
