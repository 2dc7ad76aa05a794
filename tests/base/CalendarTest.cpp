#include "base/Calendar.h"

#include "support/TimeZone.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <vector>

namespace nocta {
namespace {

using namespace std::chrono_literals;

WallTime utc(int year, int month, int day, std::chrono::minutes time = 0min) {
    return WallTime(std::chrono::sys_days(std::chrono::year(year) / month / day)) + time;
}

TEST(Calendar, DayFollowsTheLocalClock) {
    const auto instant = utc(2026, 3, 19, 23h + 30min);
    {
        const TimeZone zone(zone::berlin);
        EXPECT_EQ(Calendar::dayOf(instant), (CalendarDay{2026, 3, 20}));
    }
    const TimeZone zone(zone::newYork);
    EXPECT_EQ(Calendar::dayOf(instant), (CalendarDay{2026, 3, 19}));
}

TEST(Calendar, DayOfTheYearStartsAtOneAndHandlesLeapYears) {
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

TEST(Calendar, OffsetsOfHalfAndQuarterHoursAreExact) {
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

TEST(Calendar, LocalTimeIsConvertedToAnInstant) {
    const TimeZone zone(zone::berlin);
    EXPECT_EQ(Calendar::instantAt({2026, 1, 15}, 6, 30), utc(2026, 1, 15, 5h + 30min));
    EXPECT_EQ(Calendar::instantAt({2026, 7, 15}, 6, 30), utc(2026, 7, 15, 4h + 30min));
    EXPECT_EQ(Calendar::instantAt({1969, 12, 31}, 23, 59), utc(1969, 12, 31, 22h + 59min));
    EXPECT_EQ(Calendar::instantAt({1970, 1, 1}, 0, 59), utc(1969, 12, 31, 23h + 59min))
        << "this minute should not be mistaken for the C library's error code";
}

TEST(Calendar, TimeInASkippedHourMovesForwardOnTheSameDay) {
    const TimeZone zone(zone::berlin);
    const auto instant = Calendar::instantAt({2026, 3, 29}, 2, 30);
    EXPECT_EQ(instant, utc(2026, 3, 29, 1h + 30min)) << "03:30";
    EXPECT_EQ(Calendar::dayOf(*instant), (CalendarDay{2026, 3, 29}));
}

TEST(Calendar, RepeatedHourMapsToItsFirstOccurrenceRegardlessOfEarlierCalls) {
    const TimeZone zone(zone::berlin);
    for (const int monthBefore : {1, 7, 1}) {
        EXPECT_TRUE(Calendar::instantAt({2026, monthBefore, 15}, 2, 30).has_value());
        EXPECT_EQ(Calendar::instantAt({2026, 10, 25}, 2, 30), utc(2026, 10, 25, 30min))
            << "after month " << monthBefore;
    }
}

/// A local time near a clock change, with the instant that it should map to.
struct LocalTime {
    CalendarDay day;
    int hour;
    int minute;
    WallTime instant;
};

void expectInstants(const char* name, const std::vector<LocalTime>& rows) {
    const TimeZone zone(name);
    ASSERT_NE(Calendar::offsetFromGMT(rows.front().instant), 0h)
        << name << ": tzdata should be installed";
    for (const auto& row : rows) {
        for (const auto& earlier : rows) { // an earlier call must not change the result
            EXPECT_TRUE(Calendar::instantAt(earlier.day, earlier.hour, earlier.minute));
            EXPECT_EQ(Calendar::instantAt(row.day, row.hour, row.minute), row.instant)
                << name << " " << row.day.year << "-" << row.day.month << "-" << row.day.day << " "
                << row.hour << ":" << row.minute << " after " << earlier.day.month << "-"
                << earlier.day.day << " " << earlier.hour << ":" << earlier.minute;
        }
    }
}

TEST(Calendar, RepeatedHourMapsToItsFirstOccurrenceWhereWinterIsDaylightSaving) {
    // In Irish law, summer time is standard time, so the database marks winter as daylight saving.
    expectInstants("Europe/Dublin", {{{2026, 7, 15}, 12, 0, utc(2026, 7, 15, 11h)},
                                     {{2026, 10, 25}, 0, 59, utc(2026, 10, 24, 23h + 59min)},
                                     {{2026, 10, 25}, 1, 0, utc(2026, 10, 25)},
                                     {{2026, 10, 25}, 1, 30, utc(2026, 10, 25, 30min)},
                                     {{2026, 10, 25}, 2, 0, utc(2026, 10, 25, 2h)},
                                     {{2026, 3, 29}, 0, 59, utc(2026, 3, 29, 59min)},
                                     {{2026, 3, 29}, 1, 30, utc(2026, 3, 29, 1h + 30min)},
                                     {{2026, 3, 29}, 2, 0, utc(2026, 3, 29, 1h)}});
}

TEST(Calendar, LocalTimeIsConvertedWhereClocksGoBackForRamadan) {
    expectInstants("Africa/Casablanca", {{{2025, 6, 15}, 12, 0, utc(2025, 6, 15, 11h)},
                                         {{2025, 2, 23}, 1, 59, utc(2025, 2, 23, 59min)},
                                         {{2025, 2, 23}, 2, 30, utc(2025, 2, 23, 1h + 30min)},
                                         {{2025, 2, 23}, 3, 0, utc(2025, 2, 23, 3h)},
                                         {{2025, 4, 6}, 1, 59, utc(2025, 4, 6, 1h + 59min)},
                                         {{2025, 4, 6}, 2, 30, utc(2025, 4, 6, 2h + 30min)},
                                         {{2025, 4, 6}, 3, 0, utc(2025, 4, 6, 2h)}});
}

TEST(Calendar, LocalTimeIsConvertedWhereTheStandardOffsetChanges) {
    // Casey set its clocks back by three hours, and later forward again, without daylight saving.
    expectInstants("Antarctica/Casey", {{{2018, 3, 11}, 0, 59, utc(2018, 3, 10, 13h + 59min)},
                                        {{2018, 3, 11}, 1, 0, utc(2018, 3, 10, 14h)},
                                        {{2018, 3, 11}, 2, 30, utc(2018, 3, 10, 15h + 30min)},
                                        {{2018, 3, 11}, 4, 0, utc(2018, 3, 10, 20h)},
                                        {{2018, 10, 7}, 3, 59, utc(2018, 10, 6, 19h + 59min)},
                                        {{2018, 10, 7}, 5, 30, utc(2018, 10, 6, 21h + 30min)},
                                        {{2018, 10, 7}, 7, 0, utc(2018, 10, 6, 20h)}});
}

TEST(Calendar, TimeOnASkippedDayMovesToTheNextDay) {
    expectInstants("Pacific/Apia", {{{2011, 12, 29}, 23, 59, utc(2011, 12, 30, 9h + 59min)},
                                    {{2011, 12, 30}, 0, 0, utc(2011, 12, 30, 10h)},
                                    {{2011, 12, 30}, 6, 30, utc(2011, 12, 30, 16h + 30min)},
                                    {{2011, 12, 30}, 23, 59, utc(2011, 12, 31, 9h + 59min)},
                                    {{2011, 12, 31}, 0, 0, utc(2011, 12, 30, 10h)}});
    expectInstants("Pacific/Kwajalein", {{{1993, 8, 20}, 23, 59, utc(1993, 8, 21, 11h + 59min)},
                                         {{1993, 8, 21}, 6, 30, utc(1993, 8, 21, 18h + 30min)},
                                         {{1993, 8, 22}, 0, 0, utc(1993, 8, 21, 12h)}});
}

TEST(Calendar, RepeatedDayMapsToItsFirstOccurrence) {
    expectInstants("Pacific/Kwajalein", {{{1969, 9, 29}, 12, 0, utc(1969, 9, 29, 1h)},
                                         {{1969, 9, 30}, 0, 30, utc(1969, 9, 29, 13h + 30min)},
                                         {{1969, 9, 30}, 12, 0, utc(1969, 9, 30, 1h)},
                                         {{1969, 9, 30}, 23, 30, utc(1969, 9, 30, 12h + 30min)},
                                         {{1969, 10, 1}, 0, 0, utc(1969, 10, 1, 12h)}});
}

TEST(Calendar, UnrepresentableTimeReturnsNullopt) {
    const TimeZone zone(zone::utc);
    constexpr auto most = std::numeric_limits<int>::max();
    EXPECT_EQ(Calendar::instantAt({most, most, 1}, 12, 0), std::nullopt);
}

TEST(Calendar, TimeZoneChangeTakesEffectImmediately) {
    const auto instant = utc(2026, 7, 15, 12h);
    const TimeZone first(zone::berlin);
    EXPECT_EQ(Calendar::offsetFromGMT(instant), 2h);
    const TimeZone second(zone::kolkata);
    EXPECT_EQ(Calendar::offsetFromGMT(instant), 5h + 30min);
}

} // namespace
} // namespace nocta
