#include "base/Calendar.h"
#include "support/IndependentSun.h"
#include "support/SunPositionText.h"
#include "support/TestDesktop.h"
#include "support/TimeZone.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <ostream>
#include <string>

// Compares every position and temperature published in a simulated year with an independent
// computation, one minute at a time.

namespace nocta {
namespace {

using namespace std::chrono_literals;

struct Place {
    const char* name;
    Location location;

    friend void PrintTo(const Place& place, std::ostream* stream) { *stream << place.name; }
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

/// The sunrise and sunset of a day in whole seconds since the epoch, and the positions and
/// temperatures that follow from them.
struct SunDay {
    std::int64_t sunrise = 0;
    std::int64_t sunset = 0;

    static constexpr std::int64_t halfSpan = 900;
    static constexpr std::int64_t span = 2 * halfSpan;

    /// Uses the local day and the UTC offset at `now`.
    static SunDay of(std::int64_t now, Location place) {
        const auto time = static_cast<std::time_t>(now);
        std::tm local{};
        localtime_r(&time, &local);
        const auto offset = static_cast<long double>(local.tm_gmtoff) / 3600;
        const auto sun =
            IndependentSun::times(local.tm_yday + 1, place.latitude, place.longitude, offset);
        const auto at = [&](long double minutes) {
            auto clock = local;
            clock.tm_hour = 0;
            clock.tm_min = static_cast<int>(std::floor(minutes));
            clock.tm_sec = 0;
            clock.tm_isdst = -1;
            return std::int64_t{std::mktime(&clock)};
        };
        return {at(sun ? sun->sunrise : 6 * 60), at(sun ? sun->sunset : 18 * 60)};
    }

    SunPosition positionAt(std::int64_t now) const {
        const auto sinceSunrise = now - (sunrise - halfSpan);
        const auto sinceSunset = now - (sunset - halfSpan);
        if (sinceSunrise < 0 || sinceSunset > span) {
            return Night{};
        }
        if (sinceSunrise <= span) {
            return Sunrise{static_cast<double>(sinceSunrise) / span};
        }
        if (sinceSunset >= 0) {
            return Sunset{static_cast<double>(sinceSunset) / span};
        }
        return Day{};
    }

    std::int64_t temperatureAt(std::int64_t now) const {
        constexpr std::int64_t day = 6500;
        constexpr std::int64_t night = 2700;
        const auto sinceSunrise = now - (sunrise - halfSpan);
        const auto sinceSunset = now - (sunset - halfSpan);
        if (sinceSunrise < 0 || sinceSunset > span) {
            return night;
        }
        if (sinceSunrise <= span) {
            return night + (day - night) * sinceSunrise / span;
        }
        return sinceSunset < 0 ? day : day - (day - night) * sinceSunset / span;
    }
};

TEST_P(YearTest, EveryMinuteAgreesWithAnIndependentComputation) {
    plugExternal();
    desktop.runLoop.setWallClock(Calendar::instantAt({2026, 1, 1}, 0, 0).value() + 7s);
    gamma().start(desktop.notificationCenter);
    schedule().start();
    colorTemperature().startAutomaticMode();
    desktop.location.answer(AuthorizationStatus::authorized);
    desktop.location.send(GetParam().location);

    SunDay day;
    CalendarDay date;
    int published = 0;
    const auto nowInSeconds = [&] {
        return std::chrono::duration_cast<std::chrono::seconds>(
                   desktop.runLoop.wallNow().time_since_epoch())
            .count();
    };
    const auto watch = schedule().currentSunPosition.subscribe([&](const SunPosition& position) {
        ++published;
        // The first update of a day recalculates the times with the zone's offset at that moment.
        if (const auto today = Calendar::dayOf(desktop.runLoop.wallNow()); today != date) {
            date = today;
            day = SunDay::of(nowInSeconds(), GetParam().location);
        }
        ASSERT_EQ(position, day.positionAt(nowInSeconds()));
    });

    constexpr int minutes = 365 * 24 * 60;
    int glides = 0;
    for (int minute = 0; minute < minutes && !HasFatalFailure(); ++minute) {
        desktop.runLoop.advance(60s);
        const auto shown = colorTemperature().currentTemperature.get();
        // The product of two fractions may be slightly less than a whole kelvin.
        ASSERT_LE(std::abs(shown - day.temperatureAt(nowInSeconds())), 1) << minute;
        ASSERT_EQ(gamma().currentTemperature().at(external), shown);
        glides += shown != 6500 && shown != 2700 ? 1 : 0;
        desktop.trace.clear();
    }
    EXPECT_GE(published, minutes);
    EXPECT_GT(glides, 365 * 50);
}

} // namespace
} // namespace nocta
