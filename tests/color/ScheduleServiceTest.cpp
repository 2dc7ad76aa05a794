#include "color/ScheduleService.h"

#include "base/Calendar.h"
#include "support/SunPositionText.h"
#include "support/TestDesktop.h"
#include "support/TimeZone.h"

#include <gtest/gtest.h>

#include <chrono>

namespace nocta {
namespace {

using namespace std::chrono_literals;

constexpr Location berlin{52.52, 13.405};
constexpr Location spitsbergen{78.22, 15.65};

class ScheduleServiceTest : public TestDesktop {
protected:
    TimeZone zone{zone::berlin};

    /// Sets the wall clock to a local time.
    void setClock(CalendarDay day, std::chrono::seconds time) {
        const auto midnight = Calendar::instantAt(day, 0, 0);
        desktop.runLoop.setWallClock(midnight.value() + time);
    }
    void startAt(std::chrono::seconds time, CalendarDay day = {2026, 3, 20}) {
        setClock(day, time);
        schedule().start();
        desktop.runLoop.advance(0s); // lets the location manager report its status
    }
    SunPosition position() { return schedule().currentSunPosition.get(); }
    WallTime local(CalendarDay day, std::chrono::minutes time) {
        return Calendar::instantAt(day, static_cast<int>(time / 1h),
                                   static_cast<int>(time % 1h / 1min))
            .value();
    }
};

TEST_F(ScheduleServiceTest, PositionIsDayWithoutTimesBeforeTheStart) {
    EXPECT_EQ(schedule().sunriseTime.get(), std::nullopt);
    EXPECT_EQ(position(), SunPosition(Day{}));
    schedule().currentSunPosition.set(Night{});
    schedule().updateSunPosition(); // on a new day this also calculates the times
    EXPECT_TRUE(schedule().sunriseTime.get().has_value());
}

TEST_F(ScheduleServiceTest, PositionFollowsTheDefaultTimes) {
    struct Row {
        std::chrono::seconds time;
        SunPosition position;
    };
    startAt(12h);
    EXPECT_EQ(schedule().sunriseTime.get(), local({2026, 3, 20}, 6h + 30min));
    EXPECT_EQ(schedule().sunsetTime.get(), local({2026, 3, 20}, 18h + 30min));
    for (const auto& [time, expected] : {
             Row{0h, Night{}},
             Row{6h + 15min - 1s, Night{}},
             Row{6h + 15min, Sunrise{0}},
             Row{6h + 20min, Sunrise{5.0 / 30}},
             Row{6h + 30min, Sunrise{0.5}},
             Row{6h + 45min, Sunrise{1}},
             Row{6h + 45min + 1s, Day{}},
             Row{12h, Day{}},
             Row{18h + 15min - 1s, Day{}},
             Row{18h + 15min, Sunset{0}},
             Row{18h + 30min, Sunset{0.5}},
             Row{18h + 45min, Sunset{1}},
             Row{18h + 45min + 1s, Night{}},
             Row{19h, Night{}},
             Row{23h + 59min + 59s, Night{}},
         }) {
        setClock({2026, 3, 20}, time);
        schedule().updateSunPosition();
        EXPECT_EQ(position(), expected)
            << "at " << time / 1h << ":" << time % 1h / 1min << ":" << time % 1min / 1s
            << "; a transition should last from 15 minutes before the event to 15 minutes after it";
    }
}

TEST_F(ScheduleServiceTest, SunriseTakesPrecedenceIfTheTransitionsOverlap) {
    startAt(12h);
    schedule().sunriseTime.set(local({2026, 3, 20}, 12h));
    schedule().sunsetTime.set(local({2026, 3, 20}, 12h + 20min));
    setClock({2026, 3, 20}, 12h + 10min);
    schedule().updateSunPosition();
    EXPECT_EQ(position(), SunPosition(Sunrise{25.0 / 30}));
    setClock({2026, 3, 20}, 12h + 20min);
    schedule().updateSunPosition();
    EXPECT_EQ(position(), SunPosition(Sunset{0.5}));
}

TEST_F(ScheduleServiceTest, PositionIsUpdatedEveryMinute) {
    startAt(6h + 14min);
    EXPECT_EQ(position(), SunPosition(Night{}));
    desktop.runLoop.advance(59s);
    EXPECT_EQ(position(), SunPosition(Night{}));
    desktop.runLoop.advance(1s);
    EXPECT_EQ(position(), SunPosition(Sunrise{0}));
    desktop.runLoop.advance(10min);
    EXPECT_EQ(position(), SunPosition(Sunrise{10.0 / 30}));
}

TEST_F(ScheduleServiceTest, LocationChangesTheTimesImmediately) {
    startAt(12h, {2026, 6, 21});
    desktop.location.answer(AuthorizationStatus::authorized);
    desktop.location.send(berlin);
    const auto expected = SunCalculator().calculate(desktop.runLoop.wallNow(), berlin.latitude,
                                                    berlin.longitude, desktop.runLoop.wallNow());
    EXPECT_EQ(schedule().sunriseTime.get(), expected.sunrise);
    EXPECT_EQ(schedule().sunsetTime.get(), expected.sunset);
    EXPECT_NE(schedule().sunriseTime.get(), local({2026, 6, 21}, 6h + 30min));
}

TEST_F(ScheduleServiceTest, TimesAreSixAndEighteenAtThePoleAndHalfPastWithoutALocation) {
    startAt(12h, {2026, 6, 21});
    EXPECT_EQ(schedule().sunriseTime.get(), local({2026, 6, 21}, 6h + 30min));
    desktop.location.answer(AuthorizationStatus::authorized);
    desktop.location.send(spitsbergen);
    EXPECT_EQ(schedule().sunriseTime.get(), local({2026, 6, 21}, 6h));
    EXPECT_EQ(schedule().sunsetTime.get(), local({2026, 6, 21}, 18h));
}

TEST_F(ScheduleServiceTest, MidnightSetsTheTimesOfTheNewDay) {
    startAt(23h + 59min);
    desktop.runLoop.advance(60s);
    EXPECT_EQ(schedule().sunriseTime.get(), local({2026, 3, 21}, 6h + 30min));
    EXPECT_EQ(position(), SunPosition(Night{}));
}

TEST_F(ScheduleServiceTest, MidnightWithALocationRecalculatesOnce) {
    startAt(23h + 59min);
    desktop.location.answer(AuthorizationStatus::authorized);
    desktop.location.send(berlin);
    int calculations = 0;
    const auto subscription = schedule().sunriseTime.subscribe(
        [&](const std::optional<WallTime>& /*time*/) { ++calculations; });
    desktop.runLoop.advance(60s);
    EXPECT_EQ(calculations, 1);
    const auto now = desktop.runLoop.wallNow();
    EXPECT_EQ(schedule().sunriseTime.get(),
              SunCalculator().calculate(now, berlin.latitude, berlin.longitude, now).sunrise)
        << "the times should be those of the known location";
    EXPECT_EQ(Calendar::dayOf(*schedule().sunriseTime.get()), (CalendarDay{2026, 3, 21}));
    desktop.runLoop.advance(10min);
    EXPECT_EQ(calculations, 1);
}

TEST_F(ScheduleServiceTest, LocationIsRefreshedAfterMoreThanADay) {
    startAt(12h);
    desktop.location.answer(AuthorizationStatus::authorized);
    desktop.location.send(berlin);
    ASSERT_FALSE(desktop.location.isUpdating);
    desktop.runLoop.advance(24h);
    EXPECT_FALSE(desktop.location.isUpdating) << "exactly a day should not be enough";
    desktop.runLoop.advance(1min);
    EXPECT_TRUE(desktop.location.isUpdating);
    desktop.location.send(berlin);
    desktop.trace.clear();
    desktop.runLoop.advance(24h);
    EXPECT_TRUE(calls("startUpdatingLocation").empty())
        << "each refresh should make only one request";
}

TEST_F(ScheduleServiceTest, WithoutAuthorizationOnlyTheTimeOfTheRefreshChanges) {
    startAt(12h);
    desktop.runLoop.advance(24h + 1min);
    EXPECT_TRUE(calls("startUpdatingLocation").empty());
    desktop.location.answer(AuthorizationStatus::authorized);
    desktop.location.send(berlin);
    desktop.trace.clear();
    desktop.runLoop.advance(23h);
    EXPECT_TRUE(calls("startUpdatingLocation").empty());
}

TEST_F(ScheduleServiceTest, RefreshNeedsFullAuthorization) {
    using enum AuthorizationStatus;
    startAt(12h);
    for (const auto status : {notDetermined, restricted, denied, authorizedWhenInUse, authorized}) {
        desktop.location.answer(status);
        desktop.location.isUpdating = false; // the new status may have started updates
        schedule().refreshLocation();
        EXPECT_EQ(desktop.location.isUpdating, status == authorized) << static_cast<int>(status);
    }
}

TEST_F(ScheduleServiceTest, SleepTakesEffectAtTheNextTick) {
    startAt(12h);
    desktop.runLoop.suspend(8h);
    EXPECT_EQ(position(), SunPosition(Day{})) << "nothing should run while the machine sleeps";
    desktop.runLoop.advance(60s);
    EXPECT_EQ(position(), SunPosition(Night{}));
    desktop.runLoop.suspend(8h); // past midnight
    desktop.runLoop.advance(60s);
    EXPECT_EQ(schedule().sunriseTime.get(), local({2026, 3, 21}, 6h + 30min));
}

TEST_F(ScheduleServiceTest, ClockChangeTakesEffectAtTheNextTick) {
    startAt(12h);
    setClock({2026, 3, 20}, 22h);
    desktop.runLoop.advance(60s);
    EXPECT_EQ(position(), SunPosition(Night{}));
    setClock({2026, 3, 18}, 12h);
    desktop.runLoop.advance(60s);
    EXPECT_EQ(position(), SunPosition(Day{}));
    EXPECT_EQ(schedule().sunriseTime.get(), local({2026, 3, 18}, 6h + 30min));
}

TEST_F(ScheduleServiceTest, NewTimeZoneTakesEffectAtTheNextCalculation) {
    startAt(20h);
    const auto sunset = schedule().sunsetTime.get();
    const TimeZone elsewhere(zone::newYork); // the same instant is in the afternoon there
    desktop.runLoop.advance(60s);
    EXPECT_EQ(schedule().sunsetTime.get(), sunset) << "the times should not change during the day";
    desktop.runLoop.advance(24h);
    EXPECT_EQ(schedule().sunsetTime.get(),
              Calendar::instantAt(Calendar::dayOf(desktop.runLoop.wallNow()), 18, 30));
}

TEST_F(ScheduleServiceTest, DefaultTimesFollowDaylightSaving) {
    startAt(23h + 59min, {2026, 3, 28});
    desktop.runLoop.advance(60s);
    EXPECT_EQ(schedule().sunriseTime.get(), local({2026, 3, 29}, 6h + 30min));
    desktop.runLoop.advance(5h + 20min); // 05:20 by the old clock, 06:20 by the new one
    EXPECT_EQ(position(), SunPosition(Sunrise{5.0 / 30}));
}

} // namespace
} // namespace nocta
