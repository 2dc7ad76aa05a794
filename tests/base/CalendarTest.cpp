#include "base/Calendar.h"

#include "support/TimeZone.h"

#include <gtest/gtest.h>

#include <chrono>

namespace nocta {
namespace {

using namespace std::chrono_literals;

WallTime utc(int year, int month, int day, std::chrono::minutes time = 0min) {
    return WallTime(std::chrono::sys_days(std::chrono::year(year) / month / day)) + time;
}

TEST(Calendar, DayIsThatOfTheLocalClock) {
    const auto instant = utc(2026, 3, 19, 23h + 30min);
    {
        const TimeZone zone(zone::berlin);
        EXPECT_EQ(Calendar::dayOf(instant), (CalendarDay{2026, 3, 20}));
    }
    const TimeZone zone(zone::newYork);
    EXPECT_EQ(Calendar::dayOf(instant), (CalendarDay{2026, 3, 19}));
}

TEST(Calendar, DayOfTheYearCountsFromOneAndKnowsLeapYears) {
    const TimeZone zone(zone::utc);
    EXPECT_EQ(Calendar::dayOfYear(utc(2026, 1, 1)), 1);
    EXPECT_EQ(Calendar::dayOfYear(utc(2026, 12, 31, 23h + 59min)), 365);
    EXPECT_EQ(Calendar::dayOfYear(utc(2028, 12, 31)), 366);
    EXPECT_EQ(Calendar::dayOfYear(utc(2028, 3, 1)), 61);
}

TEST(Calendar, OffsetFollowsDaylightSaving) {
    const TimeZone zone(zone::berlin);
    EXPECT_EQ(Calendar::offsetFromGMT(utc(2026, 1, 15)), 1h);
    EXPECT_EQ(Calendar::offsetFromGMT(utc(2026, 7, 15)), 2h);
    EXPECT_EQ(Calendar::offsetFromGMT(utc(2026, 3, 29, 59min)), 1h);
    EXPECT_EQ(Calendar::offsetFromGMT(utc(2026, 3, 29, 60min)), 2h);
}

TEST(Calendar, OffsetsOfHalvesAndQuartersOfAnHour) {
    struct Row {
        const char* zone;
        std::chrono::minutes january;
        std::chrono::minutes july;
    };
    for (const auto& [name, january, july] :
         {Row{zone::kolkata, 5h + 30min, 5h + 30min}, Row{zone::kathmandu, 5h + 45min, 5h + 45min},
          Row{zone::lordHowe, 11h, 10h + 30min}, Row{zone::chatham, 13h + 45min, 12h + 45min},
          Row{zone::newYork, -5h, -4h}, Row{zone::lineIslands, 14h, 14h},
          Row{zone::bakerIsland, -12h, -12h}}) {
        const TimeZone zone(name);
        EXPECT_EQ(Calendar::offsetFromGMT(utc(2026, 1, 15)), january) << name;
        EXPECT_EQ(Calendar::offsetFromGMT(utc(2026, 7, 15)), july) << name;
    }
}

TEST(Calendar, InstantOfALocalTime) {
    const TimeZone zone(zone::berlin);
    EXPECT_EQ(Calendar::instantAt({2026, 1, 15}, 6, 30), utc(2026, 1, 15, 5h + 30min));
    EXPECT_EQ(Calendar::instantAt({2026, 7, 15}, 6, 30), utc(2026, 7, 15, 4h + 30min));
    EXPECT_EQ(Calendar::instantAt({1969, 12, 31}, 23, 59), utc(1969, 12, 31, 22h + 59min));
    EXPECT_EQ(Calendar::instantAt({1970, 1, 1}, 0, 59), utc(1969, 12, 31, 23h + 59min))
        << "a minute that the C library could take for its error";
}

TEST(Calendar, HourThatDaylightSavingLeavesOutIsMovedAndStaysOnItsDay) {
    const TimeZone zone(zone::berlin);
    const auto instant = Calendar::instantAt({2026, 3, 29}, 2, 30);
    EXPECT_EQ(instant, utc(2026, 3, 29, 1h + 30min));
    EXPECT_EQ(Calendar::dayOf(*instant), (CalendarDay{2026, 3, 29}));
}

TEST(Calendar, HourThatComesTwiceIsTheFirstWhateverWasAskedBefore) {
    const TimeZone zone(zone::berlin);
    for (const int monthBefore : {1, 7, 1}) {
        EXPECT_TRUE(Calendar::instantAt({2026, monthBefore, 15}, 2, 30).has_value());
        EXPECT_EQ(Calendar::instantAt({2026, 10, 25}, 2, 30), utc(2026, 10, 25, 30min))
            << "after month " << monthBefore;
    }
}

TEST(Calendar, ChangeOfTheZoneCountsAtOnce) {
    const auto instant = utc(2026, 7, 15, 12h);
    const TimeZone first(zone::berlin);
    EXPECT_EQ(Calendar::offsetFromGMT(instant), 2h);
    const TimeZone second(zone::kolkata);
    EXPECT_EQ(Calendar::offsetFromGMT(instant), 5h + 30min);
}

} // namespace
} // namespace nocta
