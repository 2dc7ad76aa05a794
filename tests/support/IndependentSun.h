#pragma once

#include <cmath>
#include <optional>

namespace nocta {

/// A second implementation of the sun calculation. It uses long double and normalizes angles with
/// remainders. The times are in minutes after midnight. During polar day and polar night, there are
/// no times.
struct IndependentSun {
    long double sunrise = 0;
    long double sunset = 0;

    static std::optional<IndependentSun> times(int dayOfYear, long double latitude,
                                               long double longitude, long double offsetHours) {
        constexpr auto pi = 3.141592653589793238L;
        const auto wrapped = [](long double value, long double limit) {
            const auto rest = std::fmod(value, limit);
            return rest < 0 ? rest + limit : rest;
        };
        const auto t = dayOfYear + (12 - longitude / 15) / 24;
        const auto m = (0.9856L * t - 3.289L) * pi / 180;
        const auto l =
            wrapped(m * 180 / pi + 1.916L * std::sin(m) + 0.020L * std::sin(2 * m) + 282.634L, 360);
        const auto lRadians = l * pi / 180;
        // `atan2` returns an angle in the right quadrant without a correction.
        const auto ra =
            wrapped(std::atan2(0.91764L * std::sin(lRadians), std::cos(lRadians)) * 180 / pi, 360);
        const auto declination = std::asin(0.39782L * std::sin(lRadians));
        const auto phi = latitude * pi / 180;
        const auto cosH = (-0.01453808050249674L - std::sin(declination) * std::sin(phi)) /
                          (std::cos(declination) * std::cos(phi));
        if (std::abs(cosH) > 1) {
            return std::nullopt;
        }
        const auto h = std::acos(cosH) * 180 / pi;
        const auto minutes = [&](long double angle) {
            const auto local = angle / 15 + ra / 15 - 0.06571L * t - 6.622L - longitude / 15;
            return wrapped(wrapped(local, 24) + offsetHours, 24) * 60;
        };
        return IndependentSun{minutes(360 - h), minutes(h)};
    }
};

} // namespace nocta
