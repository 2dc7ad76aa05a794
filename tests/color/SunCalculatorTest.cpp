#include "color/SunCalculator.h"

#include "base/Calendar.h"
#include "support/IndependentSun.h"
#include "support/TimeZone.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <optional>
#include <random>
#include <utility>

namespace nocta {
namespace {

using namespace std::chrono_literals;

WallTime utc(int year, int month, int day, std::chrono::minutes time = 0min) {
    return WallTime(std::chrono::sys_days(std::chrono::year(year) / month / day)) + time;
}

/// Returns the hour and minute on the local clock.
std::chrono::minutes clockTime(WallTime instant) {
    const auto time = std::chrono::system_clock::to_time_t(
        std::chrono::time_point_cast<std::chrono::system_clock::duration>(instant));
    std::tm local{};
    localtime_r(&time, &local);
    EXPECT_EQ(local.tm_sec, 0);
    return std::chrono::hours(local.tm_hour) + std::chrono::minutes(local.tm_min);
}

TEST(SunCalculator, AgreesWithAnIndependentComputationInEveryZone) {
    std::mt19937 random(1);
    std::uniform_int_distribution days(0, 365 * 12);
    std::uniform_real_distribution latitudes(-89.0, 89.0);
    std::uniform_real_distribution longitudes(-180.0, 180.0);
    int polar = 0;
    int ordinary = 0;
    for (const auto* const name :
         {zone::utc, zone::berlin, zone::newYork, zone::kolkata, zone::kathmandu, zone::lordHowe,
          zone::chatham, zone::lineIslands, zone::bakerIsland}) {
        const TimeZone zone(name);
        for (int round = 0; round < 1500; ++round) {
            const auto date = utc(2019, 12, 25, 12h) + days(random) * 24h;
            const auto now = utc(2019, 12, 25, 12h) + days(random) * 24h;
            const auto latitude = latitudes(random);
            const auto longitude = longitudes(random);
            const auto times = SunCalculator().calculate(date, latitude, longitude, now);
            ASSERT_EQ(Calendar::dayOf(times.sunrise), Calendar::dayOf(date));
            ASSERT_EQ(Calendar::dayOf(times.sunset), Calendar::dayOf(date));

            const auto day = Calendar::dayOf(date);
            const auto dayOfYear =
                std::chrono::sys_days(std::chrono::year(day.year) / day.month / day.day) -
                std::chrono::sys_days(std::chrono::year(day.year) / 1 / 1) + std::chrono::days(1);
            const auto offset =
                std::chrono::duration<long double, std::ratio<3600>>(Calendar::offsetFromGMT(now));
            const auto expected = IndependentSun::times(static_cast<int>(dayOfYear.count()),
                                                        latitude, longitude, offset.count());
            if (!expected) {
                ++polar;
                ASSERT_EQ(clockTime(times.sunrise), 6h);
                ASSERT_EQ(clockTime(times.sunset), 18h);
                continue;
            }
            ++ordinary;
            // Rounding of the last bits may move a time at a full minute to a neighboring minute.
            const auto check = [&](WallTime time, long double minutes) {
                const auto whole = static_cast<int>(std::floor(minutes));
                const auto edge = std::abs(minutes - std::round(minutes)) < 1e-6L;
                return edge || time == Calendar::instantAt(day, whole / 60, whole % 60);
            };
            ASSERT_TRUE(check(times.sunrise, expected->sunrise)) << name << " " << round;
            ASSERT_TRUE(check(times.sunset, expected->sunset)) << name << " " << round;
        }
    }
    EXPECT_GT(polar, 500);
    EXPECT_GT(ordinary, 8000);
}

TEST(SunCalculator, AgreesWithAlmanacsWithinFiveMinutes) {
    struct Row {
        const char* zone;
        WallTime date;
        double latitude;
        double longitude;
        std::chrono::minutes sunrise;
        std::chrono::minutes sunset;
    };
    // Published times for Berlin, New York and Kolkata.
    for (const auto& row : {
             Row{zone::berlin, utc(2026, 6, 21, 12h), 52.52, 13.405, 4h + 43min, 21h + 33min},
             Row{zone::berlin, utc(2026, 12, 21, 12h), 52.52, 13.405, 8h + 15min, 15h + 54min},
             Row{zone::newYork, utc(2026, 3, 20, 16h), 40.713, -74.006, 6h + 59min, 19h + 8min},
             Row{zone::kolkata, utc(2026, 9, 23, 6h), 22.573, 88.364, 5h + 28min, 17h + 31min},
         }) {
        const TimeZone zone(row.zone);
        const auto times =
            SunCalculator().calculate(row.date, row.latitude, row.longitude, row.date);
        EXPECT_LE(std::abs((clockTime(times.sunrise) - row.sunrise).count()), 5) << row.zone;
        EXPECT_LE(std::abs((clockTime(times.sunset) - row.sunset).count()), 5) << row.zone;
    }
}

TEST(SunCalculator, PolarDayAndNightReturnSixAndEighteen) {
    const TimeZone zone(zone::berlin);
    for (const auto& date : {utc(2026, 12, 21, 12h), utc(2026, 6, 21, 12h)}) {
        for (const auto latitude : {80.0, -80.0, 89.999, -89.999}) {
            const auto times = SunCalculator().calculate(date, latitude, 15, date);
            EXPECT_EQ(clockTime(times.sunrise), 6h);
            EXPECT_EQ(clockTime(times.sunset), 18h);
            EXPECT_EQ(Calendar::dayOf(times.sunset), Calendar::dayOf(date));
        }
    }
}

TEST(SunCalculator, UsesTheCurrentOffsetInsteadOfTheOffsetOfTheDate) {
    const TimeZone zone(zone::berlin);
    const auto summer = utc(2026, 7, 15, 12h);
    const auto winter = utc(2026, 1, 15, 12h);
    const auto calculated = SunCalculator().calculate(summer, 52.52, 13.405, winter);
    const auto inSummer = SunCalculator().calculate(summer, 52.52, 13.405, summer);
    EXPECT_EQ(inSummer.sunrise - calculated.sunrise, 1h);
    EXPECT_EQ(inSummer.sunset - calculated.sunset, 1h);
}

TEST(SunCalculatorDeathTest, NonFiniteHourStopsTheProgram) {
    constexpr auto notANumber = std::numeric_limits<double>::quiet_NaN();
    constexpr auto infinite = std::numeric_limits<double>::infinity();
    const auto date = utc(2026, 6, 21, 12h);
    for (const auto& [latitude, longitude] :
         {std::pair(notANumber, 13.405), std::pair(52.52, notANumber), std::pair(infinite, 13.405),
          std::pair(52.52, infinite), std::pair(52.52, -infinite)}) {
        EXPECT_DEATH(SunCalculator().calculate(date, latitude, longitude, date),
                     "too large for an integer")
            << latitude << " " << longitude;
    }
}

TEST(SunCalculator, SunsetAfterMidnightIsWrappedOntoTheSameDay) {
    const TimeZone zone(zone::utc); // far from the location, where the sun sets at 2:00 UTC
    const auto date = utc(2026, 6, 21, 12h);
    const auto times = SunCalculator().calculate(date, 40, -100, date);
    EXPECT_LT(times.sunset, times.sunrise);
    EXPECT_EQ(Calendar::dayOf(times.sunset), (CalendarDay{2026, 6, 21}));
}

} // namespace
} // namespace nocta
