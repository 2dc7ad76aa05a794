#include "breaks/BreakTimer.h"

#include "support/TestDesktop.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <variant>
#include <vector>

namespace nocta {
namespace {

using namespace std::chrono_literals;
using Calls = std::vector<std::string>;

constexpr std::int64_t minutes = 20;
constexpr std::int64_t seconds = 20;
constexpr double full = minutes * 60;

class BreakTimerTest : public TestDesktop {
protected:
    BreakTimerTest() {
        settings().breakIntervalMinutes.set(minutes);
        settings().breakDurationSeconds.set(seconds);
        settings().suspendDuringMeetings.set(true);
        runSeconds(0); // delivers the change to the interval
        for (const auto name : {breakDidStartNotification, breakDidEndNotification}) {
            posts_.push_back(desktop.notificationCenter.observe(
                name, [this, name] { posted.emplace_back(name); }));
        }
        states_ = breakTimer().state.subscribe(
            [this](const BreakState& state) { states.push_back(state); });
    }

    std::vector<std::string> posted;
    std::vector<BreakState> states;

    const BreakState& state() { return breakTimer().state.get(); }
    BreakStatistics totals() { return breakTimer().statistics.get(); }
    void runSeconds(double number) {
        desktop.runLoop.advance(
            std::chrono::duration_cast<Duration>(std::chrono::duration<double>(number)));
    }
    void bringMeetingToFront(bool isMeeting = true) {
        desktop.workspace.frontmost =
            RunningApplication{isMeeting ? "us.zoom.xos" : "org.example.editor", "An application"};
        meetingDetector().checkFrontmostApplication();
    }

    // Each function enters a state and clears the records.
    void beIdle() { forget(); }
    void beCounting() {
        breakTimer().start();
        runSeconds(10);
        forget();
    }
    void beActive() {
        breakTimer().start();
        runSeconds(full + 5);
        forget();
    }
    void bePaused() {
        breakTimer().start();
        runSeconds(10);
        bringMeetingToFront();
        runSeconds(1);
        forget();
    }
    void beSnoozed() {
        beActive();
        breakTimer().snooze(5);
        runSeconds(10);
        forget();
    }

    void expectNothingHappened(const std::function<void()>& event) {
        const auto before = state();
        const auto totalsBefore = totals();
        event();
        EXPECT_EQ(state(), before);
        EXPECT_EQ(totals(), totalsBefore);
        EXPECT_TRUE(states.empty());
        EXPECT_TRUE(posted.empty());
    }
    void expectTotals(BreakStatistics expected) {
        EXPECT_EQ(totals(), expected);
        const auto stored = desktop.userDefaults.table.dataForKey("breakStatistics");
        ASSERT_TRUE(stored);
        EXPECT_EQ(nlohmann::json::parse(stored->bytes).get<BreakStatistics>(), expected);
    }

private:
    void forget() {
        posted.clear();
        states.clear();
        desktop.trace.clear();
    }

    Cancellables posts_;
    Subscription states_;
};

const Calls started = {"NoctaBreakDidStart"};
const Calls ended = {"NoctaBreakDidEnd"};

// The state table: each event in each state.

TEST_F(BreakTimerTest, StartWhileIdleCountsFromTheFullInterval) {
    beIdle();
    breakTimer().start();
    EXPECT_EQ(state(), BreakState(Counting{full}));
    EXPECT_EQ(breakTimer().timeUntilNextBreak.get(), full);
    runSeconds(1);
    EXPECT_EQ(state(), BreakState(Counting{full - 1}));
}

TEST_F(BreakTimerTest, OtherEventsWhileIdleAreIgnored) {
    beIdle();
    expectNothingHappened([&] { breakTimer().skip(); });
    expectNothingHappened([&] { breakTimer().snooze(5); });
    expectNothingHappened([&] {
        settings().breakIntervalMinutes.set(7);
        runSeconds(10);
    });
    expectNothingHappened([&] {
        bringMeetingToFront();
        runSeconds(4000);
    });
}

TEST_F(BreakTimerTest, StopWhileIdleOnlyPublishesTheState) {
    beIdle();
    breakTimer().stop();
    EXPECT_EQ(states, (std::vector<BreakState>{Idle{}}));
    EXPECT_TRUE(posted.empty());
}

TEST_F(BreakTimerTest, TickWhileCountingSubtractsOneSecond) {
    beCounting();
    runSeconds(3);
    EXPECT_EQ(states, (std::vector<BreakState>{Counting{full - 11}, Counting{full - 12},
                                               Counting{full - 13}}));
    EXPECT_EQ(breakTimer().timeUntilNextBreak.get(), full - 13);
    EXPECT_TRUE(posted.empty());
}

TEST_F(BreakTimerTest, BreakBeginsWhenTheCountdownReachesZero) {
    beCounting();
    runSeconds(full - 11);
    EXPECT_EQ(state(), BreakState(Counting{1}));
    EXPECT_TRUE(posted.empty());
    runSeconds(1);
    EXPECT_EQ(state(), BreakState(Active{seconds}));
    EXPECT_EQ(states[states.size() - 2], BreakState(Counting{0}));
    EXPECT_EQ(breakTimer().breakTimeRemaining.get(), seconds);
    EXPECT_EQ(posted, started);
    EXPECT_EQ(totals(), BreakStatistics{});
}

TEST_F(BreakTimerTest, MeetingWhileCountingPausesWithoutSubtractingASecond) {
    beCounting();
    bringMeetingToFront();
    EXPECT_TRUE(states.empty()) << "only the next tick should check for a meeting";
    runSeconds(1);
    EXPECT_EQ(states, (std::vector<BreakState>{Paused{PauseReason::meeting}}));
    EXPECT_EQ(breakTimer().timeUntilNextBreak.get(), full - 10);
    EXPECT_TRUE(posted.empty());
}

TEST_F(BreakTimerTest, CountingContinuesInAMeetingIfMeetingsDoNotSuspend) {
    settings().suspendDuringMeetings.set(false);
    beCounting();
    bringMeetingToFront();
    runSeconds(1);
    EXPECT_EQ(state(), BreakState(Counting{full - 11}));
}

TEST_F(BreakTimerTest, CountingRestartsWhenTheIntervalIsSetEvenToTheSameValue) {
    beCounting();
    for (const std::int64_t interval : {7, 7, 30}) {
        settings().breakIntervalMinutes.set(interval);
        runSeconds(0);
        EXPECT_EQ(state(), BreakState(Counting{static_cast<double>(interval * 60)}));
        runSeconds(5);
        EXPECT_EQ(state(), BreakState(Counting{static_cast<double>(interval * 60 - 5)}))
            << "only one timer should run";
    }
    EXPECT_TRUE(posted.empty());
}

TEST_F(BreakTimerTest, IntervalChangeAppliesToTheStateAtDelivery) {
    beCounting();
    settings().breakIntervalMinutes.set(7);
    EXPECT_TRUE(states.empty());
    breakTimer().stop();
    runSeconds(10);
    EXPECT_EQ(states, (std::vector<BreakState>{Idle{}}));
}

TEST_F(BreakTimerTest, StopWhileCountingLeadsToIdle) {
    beCounting();
    breakTimer().stop();
    runSeconds(4000);
    EXPECT_EQ(states, (std::vector<BreakState>{Idle{}}));
    EXPECT_TRUE(posted.empty());
}

TEST_F(BreakTimerTest, OtherEventsWhileCountingAreIgnored) {
    beCounting();
    expectNothingHappened([&] { breakTimer().start(); });
    expectNothingHappened([&] { breakTimer().skip(); });
    expectNothingHappened([&] { breakTimer().snooze(5); });
}

TEST_F(BreakTimerTest, TickDuringABreakSubtractsOneSecond) {
    beActive();
    runSeconds(2);
    EXPECT_EQ(states, (std::vector<BreakState>{Active{14}, Active{13}}));
    EXPECT_EQ(breakTimer().breakTimeRemaining.get(), 13);
    EXPECT_TRUE(posted.empty());
}

TEST_F(BreakTimerTest, BreakIsCompletedWhenItReachesZero) {
    beActive();
    runSeconds(15);
    EXPECT_EQ(states[states.size() - 2], BreakState(Active{0}));
    EXPECT_EQ(state(), BreakState(Counting{full}));
    EXPECT_EQ(posted, ended);
    expectTotals({.totalBreaks = 1, .completedBreaks = 1, .totalBreakTime = 20});
    runSeconds(5);
    EXPECT_EQ(state(), BreakState(Counting{full - 5}));
}

TEST_F(BreakTimerTest, SkipEndsTheBreakAndRestartsTheInterval) {
    beActive();
    breakTimer().skip();
    EXPECT_EQ(states, (std::vector<BreakState>{Counting{full}}));
    EXPECT_EQ(posted, ended);
    expectTotals({.totalBreaks = 1, .skippedBreaks = 1});
    runSeconds(60);
    EXPECT_EQ(state(), BreakState(Counting{full - 60}))
        << "the timer of the break should have stopped";
}

TEST_F(BreakTimerTest, SnoozeEndsTheBreakAndWaitsFiveMinutes) {
    beActive();
    breakTimer().snooze(5);
    const auto until = desktop.runLoop.wallNow() + 5min;
    EXPECT_EQ(states, (std::vector<BreakState>{Snoozed{until}}));
    EXPECT_EQ(posted, ended);
    expectTotals({.totalBreaks = 1, .snoozedBreaks = 1});
}

TEST_F(BreakTimerTest, StopDuringABreakLeadsToIdleWithoutEndingTheBreak) {
    beActive();
    breakTimer().stop();
    runSeconds(4000);
    EXPECT_EQ(states, (std::vector<BreakState>{Idle{}}));
    EXPECT_TRUE(posted.empty());
    EXPECT_EQ(totals(), BreakStatistics{});
}

TEST_F(BreakTimerTest, OtherEventsDuringABreakAreIgnored) {
    beActive();
    expectNothingHappened([&] { breakTimer().start(); });
    expectNothingHappened([&] {
        settings().breakIntervalMinutes.set(7);
        settings().breakDurationSeconds.set(100);
        bringMeetingToFront();
        runSeconds(0);
    });
    runSeconds(14);
    EXPECT_EQ(state(), BreakState(Active{1})) << "a meeting should not pause a break";
}

TEST_F(BreakTimerTest, FullIntervalFollowsTheSnooze) {
    beSnoozed();
    runSeconds(289);
    EXPECT_TRUE(states.empty());
    runSeconds(1);
    EXPECT_EQ(states, (std::vector<BreakState>{Counting{full}}));
    runSeconds(1);
    EXPECT_EQ(state(), BreakState(Counting{full - 1}));
    EXPECT_TRUE(posted.empty());
}

TEST_F(BreakTimerTest, StopWhileSnoozedLeadsToIdle) {
    beSnoozed();
    breakTimer().stop();
    runSeconds(4000);
    EXPECT_EQ(states, (std::vector<BreakState>{Idle{}}));
}

TEST_F(BreakTimerTest, OtherEventsWhileSnoozedAreIgnored) {
    beSnoozed();
    expectNothingHappened([&] { breakTimer().start(); });
    expectNothingHappened([&] { breakTimer().skip(); });
    expectNothingHappened([&] { breakTimer().snooze(5); });
    expectNothingHappened([&] {
        settings().breakIntervalMinutes.set(7);
        bringMeetingToFront();
        runSeconds(289);
    });
    runSeconds(1);
    EXPECT_EQ(state(), BreakState(Counting{7 * 60})) << "the new interval should take effect now";
}

TEST_F(BreakTimerTest, StopWhilePausedLeadsToIdleAndStartCountsAgain) {
    bePaused();
    bringMeetingToFront(false);
    breakTimer().stop();
    EXPECT_EQ(state(), BreakState(Idle{}));
    breakTimer().start();
    EXPECT_EQ(state(), BreakState(Counting{full}));
}

TEST_F(BreakTimerTest, OtherEventsWhilePausedAreIgnoredIncludingTheEndOfTheMeeting) {
    bePaused();
    expectNothingHappened([&] { breakTimer().start(); });
    expectNothingHappened([&] { breakTimer().skip(); });
    expectNothingHappened([&] { breakTimer().snooze(5); });
    expectNothingHappened([&] {
        settings().breakIntervalMinutes.set(7);
        bringMeetingToFront(false);
        runSeconds(40000);
    });
    EXPECT_EQ(breakTimer().timeUntilNextBreak.get(), full - 10);
}

// Behavior that is not visible in the state alone.

TEST_F(BreakTimerTest, TotalsCountEveryOutcomeButOnlyTheTimeOfCompletedBreaks) {
    beActive();
    runSeconds(15);
    runSeconds(full);
    runSeconds(19);
    breakTimer().skip();
    runSeconds(full);
    runSeconds(19);
    breakTimer().snooze(5);
    expectTotals({.totalBreaks = 3,
                  .completedBreaks = 1,
                  .skippedBreaks = 1,
                  .snoozedBreaks = 1,
                  .totalBreakTime = 20});
    restart();
    expectTotals({.totalBreaks = 3,
                  .completedBreaks = 1,
                  .skippedBreaks = 1,
                  .snoozedBreaks = 1,
                  .totalBreakTime = 20});
}

TEST_F(BreakTimerTest, UnreadableTotalsStartFromZero) {
    for (const auto& value :
         {DefaultsValue("text"), DefaultsValue(std::int64_t{3}), DefaultsValue(DefaultsData{}),
          DefaultsValue(DefaultsData{{'{', '}'}}), DefaultsValue(DefaultsData{{0xff, 0xfe, 0}}),
          DefaultsValue(DefaultsData{std::vector<std::uint8_t>(100000, '[')})}) {
        desktop.userDefaults.table.set("breakStatistics", value);
        restart();
        EXPECT_EQ(totals(), BreakStatistics{});
    }
}

TEST_F(BreakTimerTest, LengthIsTakenFromTheSettingWhenTheBreakBegins) {
    beCounting();
    settings().breakDurationSeconds.set(3);
    runSeconds(full - 10);
    EXPECT_EQ(state(), BreakState(Active{3}));
    runSeconds(3);
    for (const std::int64_t duration : {0, -5}) {
        settings().breakDurationSeconds.set(duration);
        EXPECT_EQ(state(), BreakState(Counting{full}));
        runSeconds(full);
        EXPECT_EQ(state(), BreakState(Active{static_cast<double>(duration)}));
        runSeconds(1); // the break ends at its first tick
    }
    EXPECT_EQ(state(), BreakState(Counting{full}));
}

TEST_F(BreakTimerTest, ObserverMayEndABreakThatJustBegan) {
    const auto subscription =
        desktop.notificationCenter.observe(breakDidStartNotification, [&] { breakTimer().skip(); });
    breakTimer().start();
    runSeconds(full);
    EXPECT_EQ(state(), BreakState(Counting{full}));
    EXPECT_EQ(posted, (Calls{"NoctaBreakDidStart", "NoctaBreakDidEnd"}));
    runSeconds(100);
    EXPECT_EQ(state(), BreakState(Counting{full - 100}));
}

TEST_F(BreakTimerTest, OverflowStopsTheProgram) {
    settings().breakIntervalMinutes.set(std::numeric_limits<std::int64_t>::max());
    EXPECT_DEATH(breakTimer().start(), "^nocta: stopped: breakIntervalMinutes is "
                                       "9223372036854775807: a product is too large");
    settings().breakIntervalMinutes.set(minutes);
    beActive();
    breakTimer().statistics.set({.totalBreaks = std::numeric_limits<std::int64_t>::max()});
    EXPECT_DEATH(breakTimer().skip(), "^nocta: stopped: totalBreaks in breakStatistics is "
                                      "9223372036854775807, .*: a sum is too large");
    breakTimer().statistics.set({.skippedBreaks = std::numeric_limits<std::int64_t>::max()});
    EXPECT_DEATH(breakTimer().skip(), "skippedBreaks in breakStatistics is 9223372036854775807");
}

// While the machine sleeps, the wall clock advances by eight hours and the timers stop.

TEST_F(BreakTimerTest, SleepWhileCountingIsNotCounted) {
    beCounting();
    desktop.runLoop.suspend(8h);
    EXPECT_TRUE(states.empty());
    runSeconds(1);
    EXPECT_EQ(state(), BreakState(Counting{full - 11}));
}

TEST_F(BreakTimerTest, SleepDuringABreakIsIncludedInItsRecord) {
    beActive();
    desktop.runLoop.suspend(8h);
    runSeconds(1);
    EXPECT_EQ(state(), BreakState(Active{14}));
    runSeconds(14);
    expectTotals({.totalBreaks = 1, .completedBreaks = 1, .totalBreakTime = 8 * 3600 + 20});
}

TEST_F(BreakTimerTest, SleepWhileSnoozedDoesNotShortenTheSnooze) {
    beSnoozed();
    const auto until = std::get<Snoozed>(state()).until;
    desktop.runLoop.suspend(8h);
    runSeconds(289);
    EXPECT_EQ(state(), BreakState(Snoozed{until}));
    runSeconds(1);
    EXPECT_EQ(state(), BreakState(Counting{full}));
}

TEST_F(BreakTimerTest, SleepWhileIdleOrPausedChangesNothing) {
    beIdle();
    expectNothingHappened([&] { desktop.runLoop.suspend(8h); });
    bePaused();
    expectNothingHappened([&] {
        desktop.runLoop.suspend(8h);
        runSeconds(60);
    });
}

TEST_F(BreakTimerTest, SettingTheWallClockBackOnlyShortensTheRecord) {
    beActive();
    desktop.runLoop.setWallClock(desktop.runLoop.wallNow() - 1h);
    runSeconds(15);
    EXPECT_EQ(state(), BreakState(Counting{full}));
    expectTotals({.totalBreaks = 1, .completedBreaks = 1, .totalBreakTime = 20 - 3600});
}

// The program's use of the timer.

TEST_F(BreakTimerTest, ProgramStartsTheTimerFollowsTheSettingAndStopsTheTimer) {
    settings().breakTimerEnabled.set(true);
    launch();
    EXPECT_EQ(state(), BreakState(Counting{full}));
    runSeconds(10);
    settings().breakTimerEnabled.set(true);
    EXPECT_EQ(state(), BreakState(Counting{full - 10}))
        << "a timer that is already running should not restart";
    settings().breakTimerEnabled.set(false);
    EXPECT_EQ(state(), BreakState(Idle{}));
    settings().breakTimerEnabled.set(true);
    EXPECT_EQ(state(), BreakState(Counting{full}));
    quit();
    EXPECT_EQ(state(), BreakState(Idle{}));
}

TEST_F(BreakTimerTest, ProgramLeavesTheTimerIdleIfRemindersAreOff) {
    settings().breakTimerEnabled.set(false);
    launch();
    runSeconds(4000);
    EXPECT_EQ(state(), BreakState(Idle{}));
}

} // namespace
} // namespace nocta
