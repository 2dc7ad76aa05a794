#include "system/NotificationService.h"

#include "support/TestDesktop.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace nocta {
namespace {

using namespace std::chrono_literals;

class NotificationServiceTest : public TestDesktop {
protected:
    void SetUp() override {
        settings().breakTimerEnabled.set(true);
        settings().breakIntervalMinutes.set(1);
    }
    /// Launches the program, delivers the answer to its authorization request and returns what it
    /// printed.
    std::string printedAtLaunch() {
        ::testing::internal::CaptureStdout();
        launch();
        desktop.runLoop.advance(0s);
        return ::testing::internal::GetCapturedStdout();
    }
    /// Presses a button of a new reminder.
    bool choose(const std::string& action) {
        desktop.notifications.add({"Break", "Look away", "BREAK_REMINDER"});
        return desktop.notifications.choose(desktop.notifications.shown.size() - 1, action);
    }
};

TEST_F(NotificationServiceTest, RegistersTheCategoryWithItsTwoButtons) {
    launch();
    EXPECT_EQ(desktop.notifications.categories,
              (std::vector<UserNotificationCategory>{
                  {"BREAK_REMINDER", {{"SKIP_BREAK", "Skip"}, {"SNOOZE_BREAK", "Snooze 5 min"}}}}));
    EXPECT_EQ(calls("requestAuthorization"), std::vector<std::string>{"requestAuthorization 6"});
    EXPECT_TRUE(desktop.notifications.shown.empty()) << "the program should post no notifications";
}

TEST_F(NotificationServiceTest, ErrorIsPrintedButRefusalIsNot) {
    desktop.notifications.isGranted = false;
    EXPECT_EQ(printedAtLaunch(), "");
    quit();
    dropProgram();
    desktop.notifications.error = "no service";
    EXPECT_EQ(printedAtLaunch(), "Notification authorization error: no service\n");
}

TEST_F(NotificationServiceTest, NotificationIsABannerWithSoundEvenIfTheProgramIsInFront) {
    launch();
    desktop.notifications.add({"Break", "Look away", "BREAK_REMINDER"});
    EXPECT_EQ(desktop.notifications.shown.at(0).presentation, 18U);
}

TEST_F(NotificationServiceTest, OnlyTheTwoButtonsDuringABreakHaveAnEffect) {
    launch();
    for (const auto* const action : {"SKIP_BREAK", "SNOOZE_BREAK"}) {
        EXPECT_TRUE(choose(action)) << "a button should be accepted before any break";
    }
    EXPECT_EQ(breakTimer().statistics.get(), BreakStatistics{});

    desktop.runLoop.advance(60s);
    for (const auto* const action : {"", "default", "skip_break", "DISMISS"}) {
        EXPECT_TRUE(choose(action));
    }
    EXPECT_EQ(breakTimer().statistics.get(), BreakStatistics{});
    EXPECT_TRUE(choose("SNOOZE_BREAK"));
    EXPECT_EQ(breakTimer().state.get(), BreakState(Snoozed{desktop.runLoop.wallNow() + 5min}));

    desktop.runLoop.advance(5min + 60s);
    EXPECT_TRUE(choose("SKIP_BREAK"));
    EXPECT_EQ(breakTimer().statistics.get().skippedBreaks, 1);
}

TEST_F(NotificationServiceTest, ResponseAfterTheProgramHasEndedIsIgnored) {
    launch();
    desktop.notifications.add({"Break", "Look away", "BREAK_REMINDER"});
    quit();
    dropProgram();
    EXPECT_FALSE(desktop.notifications.choose(0, "SKIP_BREAK"));
}

} // namespace
} // namespace nocta
