#include "support/TestDesktop.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <random>
#include <string>

// Compares whole days of breaks on the virtual clock with a model, one second at a time.

namespace nocta {
namespace {

using namespace std::chrono_literals;

/// An independent implementation of the reminders that advances by one second per step.
struct Model {
    enum class Phase { idle, counting, active, paused, snoozed };

    std::int64_t interval = 0; ///< seconds
    std::int64_t length = 0;   ///< seconds
    bool suspends = true;
    bool isMeeting = false;

    Phase phase = Phase::idle;
    std::int64_t left = 0; ///< seconds
    std::int64_t breakAge = 0;
    BreakStatistics totals;

    void turnOn() {
        if (phase == Phase::idle) {
            count();
        }
    }
    void turnOff() { phase = Phase::idle; }
    void skip() {
        if (phase == Phase::active) {
            ++totals.totalBreaks;
            ++totals.skippedBreaks;
            count();
        }
    }
    void snooze() {
        if (phase == Phase::active) {
            ++totals.totalBreaks;
            ++totals.snoozedBreaks;
            phase = Phase::snoozed;
            left = 300;
        }
    }
    void changeInterval(std::int64_t seconds) {
        interval = seconds;
        if (phase == Phase::counting) {
            count();
        }
    }
    void second() {
        if (phase == Phase::counting && suspends && isMeeting) {
            phase = Phase::paused;
            return;
        }
        if (phase == Phase::idle || phase == Phase::paused) {
            return;
        }
        --left;
        breakAge += phase == Phase::active ? 1 : 0;
        if (left > 0) {
            return;
        }
        if (phase == Phase::counting) {
            phase = Phase::active;
            left = length;
            breakAge = 0;
        } else {
            if (phase == Phase::active) {
                ++totals.totalBreaks;
                ++totals.completedBreaks;
                totals.totalBreakTime += static_cast<double>(breakAge);
            }
            count();
        }
    }

private:
    void count() {
        phase = Phase::counting;
        left = interval;
    }
};

class WorkingDayTest : public TestDesktop {
protected:
    Model model;

    void SetUp() override {
        plugExternal();
        settings().breakIntervalMinutes.set(20);
        settings().breakDurationSeconds.set(20);
        settings().breakTimerEnabled.set(true);
        launch();
        model.interval = 1200;
        model.length = 20;
        model.turnOn();
        compare("launch");
    }
    void TearDown() override { EXPECT_EQ(breakTimer().statistics.get(), model.totals); }

    void second() {
        desktop.runLoop.advance(1s);
        model.second();
        compare("a second");
        desktop.trace.clear();
    }
    void compare(const std::string& after) {
        const auto& state = breakTimer().state.get();
        const auto left = static_cast<double>(model.left);
        switch (model.phase) {
        case Model::Phase::idle:
            ASSERT_EQ(state, BreakState(Idle{})) << after;
            break;
        case Model::Phase::counting:
            ASSERT_EQ(state, BreakState(Counting{left})) << after;
            break;
        case Model::Phase::active:
            ASSERT_EQ(state, BreakState(Active{left})) << after;
            break;
        case Model::Phase::paused:
            ASSERT_EQ(state, BreakState(Paused{PauseReason::meeting})) << after;
            break;
        case Model::Phase::snoozed:
            ASSERT_EQ(state, BreakState(Snoozed{desktop.runLoop.wallNow() + model.left * 1s}))
                << after;
            break;
        }
        ASSERT_EQ(breakTimer().statistics.get(), model.totals) << after;
    }
    void setMeeting(bool isMeeting) {
        desktop.workspace.bringToFront(RunningApplication{
            isMeeting ? "com.apple.FaceTime" : "com.example.editor", "An application"});
        model.isMeeting = isMeeting;
    }
    void setEnabled(bool enabled) {
        settings().breakTimerEnabled.set(enabled);
        enabled ? model.turnOn() : model.turnOff();
    }
};

TEST_F(WorkingDayTest, TimerAgreesWithTheModelForTwentyFourHours) {
    std::mt19937 random(7);
    const auto happens = [&](int onceIn) {
        return std::uniform_int_distribution(1, onceIn)(random) == 1;
    };
    for (int now = 0; now < 24 * 3600 && !HasFatalFailure(); ++now) {
        if (happens(25)) {
            breakTimer().skip();
            model.skip();
        }
        if (happens(40)) {
            breakTimer().snooze(5);
            model.snooze();
        }
        if (happens(1800)) {
            setMeeting(!model.isMeeting);
        }
        if (happens(900)) {
            setEnabled(false);
            setEnabled(true);
        }
        if (happens(3600)) {
            const std::int64_t minutes = std::uniform_int_distribution(1, 30)(random);
            settings().breakIntervalMinutes.set(minutes);
            desktop.runLoop.advance(0s);
            model.changeInterval(60 * minutes);
        }
        if (happens(7200)) {
            model.suspends = !model.suspends;
            settings().suspendDuringMeetings.set(model.suspends);
        }
        compare("an action");
        second();
    }
    EXPECT_GT(model.totals.completedBreaks, 5);
    EXPECT_GT(model.totals.skippedBreaks, 5);
    EXPECT_GT(model.totals.snoozedBreaks, 5);
}

TEST_F(WorkingDayTest, NoWindowOrKeyMonitorRemainsAfterAnyOfAThousandBreaks) {
    settings().breakIntervalMinutes.set(1);
    desktop.runLoop.advance(0s);
    model.changeInterval(60);
    while (model.totals.totalBreaks < 1000 && !HasFatalFailure()) {
        second();
        if (model.phase == Model::Phase::counting && model.left == 30) {
            // No window, view or key monitor may remain between two breaks.
            ASSERT_TRUE(desktop.overlayWindows.windows().empty());
            ASSERT_EQ(views.alive, 0);
            ASSERT_TRUE(desktop.overlayWindows.press(spaceKeyCode));
        }
    }
    EXPECT_EQ(model.totals.completedBreaks, 1000);
    EXPECT_EQ(model.totals.totalBreakTime, 20000);
}

} // namespace
} // namespace nocta
