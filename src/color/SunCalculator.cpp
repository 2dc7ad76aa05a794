#include "color/SunCalculator.h"

#include "base/Calendar.h"
#include "base/Checked.h"

#include <cmath>
#include <numbers>

namespace nocta {

namespace {

constexpr double degreesPerHour = 15;
constexpr double hoursPerDay = 24;
constexpr double fullCircle = 360;
constexpr double cosZenith = -0.01453808050249674; // the cosine of 90.833 degrees

constexpr int polarSunriseHour = 6;
constexpr int polarSunsetHour = 18;

double radians(double degrees) {
    return degrees * std::numbers::pi / 180;
}

double degrees(double radians) {
    return radians * 180 / std::numbers::pi;
}

/// Adds or subtracts `limit` repeatedly, because fmod would change the low bits.
double normalized(double value, double limit) {
    while (value < 0) {
        value += limit;
    }
    while (value >= limit) {
        value -= limit;
    }
    return value;
}

WallTime instantAt(WallTime date, int hour, int minute) {
    return Calendar::instantAt(Calendar::dayOf(date), hour, minute).value_or(date);
}

WallTime instantAtHour(WallTime date, double hour) {
    const auto whole = truncated(hour);
    const auto minute = truncated((hour - static_cast<double>(whole)) * 60);
    return instantAt(date, static_cast<int>(whole), static_cast<int>(minute));
}

} // namespace

SunCalculator::SunTimes SunCalculator::calculate(WallTime date, double latitude, double longitude,
                                                 WallTime now) const {
    const auto longitudeHour = longitude / degreesPerHour;
    const auto t = Calendar::dayOfYear(date) + (12 - longitudeHour) / hoursPerDay;

    const auto anomaly = 0.9856 * t - 3.289;
    const auto trueLongitude = normalized(anomaly + 1.916 * std::sin(radians(anomaly)) +
                                              0.020 * std::sin(radians(2 * anomaly)) + 282.634,
                                          fullCircle);

    auto ascension =
        normalized(degrees(std::atan(0.91764 * std::tan(radians(trueLongitude)))), fullCircle);
    // The arc tangent covers only two quadrants, so move the ascension to the quadrant of the
    // longitude.
    ascension += std::floor(trueLongitude / 90) * 90 - std::floor(ascension / 90) * 90;
    const auto ascensionHours = ascension / degreesPerHour;

    const auto sinDeclination = 0.39782 * std::sin(radians(trueLongitude));
    const auto cosDeclination = std::cos(std::asin(sinDeclination));
    const auto cosHourAngle = (cosZenith - sinDeclination * std::sin(radians(latitude))) /
                              (cosDeclination * std::cos(radians(latitude)));
    if (cosHourAngle > 1 || cosHourAngle < -1) {
        return {.sunrise = instantAt(date, polarSunriseHour, 0),
                .sunset = instantAt(date, polarSunsetHour, 0)};
    }

    const auto offset =
        std::chrono::duration<double, std::ratio<3600>>(Calendar::offsetFromGMT(now)).count();
    const auto localHour = [&](double hourAngle) {
        const auto meanTime = hourAngle + ascensionHours - 0.06571 * t - 6.622;
        const auto universalTime = normalized(meanTime - longitudeHour, hoursPerDay);
        return normalized(universalTime + offset, hoursPerDay);
    };
    const auto hourAngle = degrees(std::acos(cosHourAngle));
    return {.sunrise = instantAtHour(date, localHour((fullCircle - hourAngle) / degreesPerHour)),
            .sunset = instantAtHour(date, localHour(hourAngle / degreesPerHour))};
}

} // namespace nocta
