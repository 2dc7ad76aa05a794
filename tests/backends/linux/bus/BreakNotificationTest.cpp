#include "backends/linux/bus/FreedesktopNotifications.h"
#include "support/DesktopOnX11.h"
#include "support/Dunst.h"
#include "support/PrivateBus.h"

#include <chrono>

namespace nocta {
namespace {

using namespace std::chrono_literals;

/// The program during a break that shows a real notification.
class BreakNotificationTest : public DesktopOnX11 {
protected:
    PrivateBus bus{"DBUS_SESSION_BUS_ADDRESS"};
    FreedesktopNotifications center;

    void SetUp() override {
        userNotificationCenter = &center;
        settings().breakTimerEnabled.set(true);
        settings().breakIntervalMinutes.set(1);
        launch();
        desktop.runLoop.advance(60s);
        ASSERT_TRUE(std::holds_alternative<Active>(breakTimer().state.get()));
    }
    void pressButtonWith(const std::string& word) {
        const Dunst dunst(bus.address(), word);
        center.add({"Break", "Look at something far away", "BREAK_REMINDER"});
        ASSERT_TRUE(serveUntil([] { return Dunst::displayed() == 1; }));
        ASSERT_TRUE(dunst.press());
        ASSERT_TRUE(serveUntil([&] { return breakTimer().statistics.get().totalBreaks == 1; }));
    }
};

TEST_F(BreakNotificationTest, SkipEndsTheBreak) {
    pressButtonWith("Skip");
    EXPECT_EQ(breakTimer().statistics.get().skippedBreaks, 1);
    EXPECT_EQ(breakTimer().state.get(), BreakState(Counting{60}));
}

TEST_F(BreakNotificationTest, SnoozePostponesTheBreak) {
    pressButtonWith("Snooze");
    EXPECT_EQ(breakTimer().statistics.get().snoozedBreaks, 1);
    EXPECT_EQ(breakTimer().state.get(), BreakState(Snoozed{desktop.runLoop.wallNow() + 5min}));
}

} // namespace
} // namespace nocta
