#include "backends/macos/MainRunLoop.h"

#include "contracts/RunLoopContract.h"

namespace nocta {

struct MainRunLoopHarness {
    MainRunLoop runLoop;

    static bool runUntil(const std::function<bool()>& condition) {
        NSDate* const deadline = [NSDate dateWithTimeIntervalSinceNow:30];
        while (!condition() && deadline.timeIntervalSinceNow > 0) {
            // Runs the loop in short intervals, because a timer does not make `runMode` return.
            [NSRunLoop.mainRunLoop runMode:NSDefaultRunLoopMode
                                beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.001]];
        }
        return condition();
    }
};
INSTANTIATE_TYPED_TEST_SUITE_P(MacOs, RunLoopContract, MainRunLoopHarness);

TEST(MainRunLoop, LeavesNoTimerBehind) {
    constexpr auto tick = std::chrono::milliseconds(2);
    bool fired = false;
    {
        MainRunLoop runLoop;
        runLoop.schedule(tick, Repeat::yes, [&fired] { fired = true; });
    }
    MainRunLoopHarness harness;
    int turns = 0;
    Timer timer;
    timer.start(harness.runLoop, tick, Repeat::yes, [&turns] { ++turns; });
    EXPECT_TRUE(harness.runUntil([&turns] { return turns == 5; }));
    EXPECT_FALSE(fired);
}

} // namespace nocta
