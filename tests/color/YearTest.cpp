#include "base/Calendar.h"
#include "support/TestDesktop.h"
#include "support/TimeZone.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <string>
#include <vector>

// A simulated year, minute by minute: every position and temperature that is published, against a
// computation of its own.

namespace nocta {
namespace {

using namespace std::chrono_literals;

struct Place {
    const char* name;
    Location location;
};

class YearTest : public TestDesktop, public ::testing::WithParamInterface<Place> {
protected:
    TimeZone zone{zone::berlin};
};
INSTANTIATE_TEST_SUITE_P(Places, YearTest,
                         ::testing::Values(Place{"Equator", {0.0, 15.0}},
                                           Place{"MidNorth", {52.5, 13.4}},
                                           Place{"MidSouth", {-41.3, 15.0}},
                                           Place{"ArcticCircle", {66.6, 15.0}},
                                           Place{"AntarcticCircle", {-66.6, 15.0}}),
                         [](const auto& instance) { return std::string(instance.param.name); });

/// Kelvin by whole seconds since the starts of the two spans, in integers.
std::int64_t expectedTemperature(std::int64_t sinceSunriseSpan, std::int64_t sinceSunsetSpan) {
    constexpr std::int64_t day = 6500;
    constexpr std::int64_t night = 2700;
    constexpr std::int64_t span = 1800;
    if (sinceSunriseSpan < 0 || sinceSunsetSpan > span) {
        return night;
    }
    if (sinceSunriseSpan <= span) {
        return night + (day - night) * sinceSunriseSpan / span;
    }
    return sinceSunsetSpan < 0 ? day : day - (day - night) * sinceSunsetSpan / span;
}

TEST_P(YearTest, EveryMinuteAgreesWithAnIndependentComputation) {
    plugExternal();
    desktop.runLoop.setWallClock(Calendar::instantAt({2026, 1, 1}, 0, 0).value() + 7s);
    launch();
    desktop.location.send(GetParam().location);

    int glides = 0;
    for (int minute = 0; minute < 365 * 24 * 60; ++minute) {
        desktop.runLoop.advance(60s);
        const auto now = desktop.runLoop.wallNow();
        const auto times = SunCalculator::calculate(now, GetParam().location.latitude,
                                                    GetParam().location.longitude, now);
        const auto sunrise = *schedule().sunriseTime.get();
        const auto sunset = *schedule().sunsetTime.get();
        // The times are those of the day, with the zone's offset when it began.
        ASSERT_EQ(Calendar::dayOf(sunrise), Calendar::dayOf(now));
        ASSERT_LE(std::chrono::abs(sunrise - times.sunrise), 1h);
        ASSERT_LE(std::chrono::abs(sunset - times.sunset), 1h);

        const auto since = [&](WallTime event) {
            return std::chrono::duration_cast<std::chrono::seconds>(now - (event - 15min)).count();
        };
        const auto expected = expectedTemperature(since(sunrise), since(sunset));
        const auto shown = colorTemperature().currentTemperature.get();
        // The product of two fractions may fall a bit short of a whole kelvin.
        ASSERT_LE(std::abs(shown - expected), 1) << minute;
        ASSERT_EQ(gamma().currentTemperature().at(external), shown);
        glides += shown != 6500 && shown != 2700 ? 1 : 0;
        desktop.trace.clear();
    }
    EXPECT_GT(glides, 365 * 50);
}

} // namespace
} // namespace nocta
