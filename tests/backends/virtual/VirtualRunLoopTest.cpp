#include "backends/virtual/VirtualRunLoop.h"

#include "base/Timer.h"
#include "contracts/RunLoopContract.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace nocta {

struct VirtualRunLoopHarness {
    VirtualRunLoop runLoop;

    bool runUntil(const std::function<bool()>& condition) {
        for (int step = 0; step < 1000 && !condition(); ++step) {
            runLoop.advance(std::chrono::milliseconds(1));
        }
        return condition();
    }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, RunLoopContract, VirtualRunLoopHarness);

namespace {

using namespace std::chrono_literals;

TEST(VirtualRunLoop, ClocksDoNotStartAtZero) {
    const VirtualRunLoop runLoop;
    EXPECT_GT(runLoop.wallNow(), WallTime());
    EXPECT_GT(runLoop.monotonicNow(), MonotonicTime());
}

TEST(VirtualRunLoop, NothingHappensUntilTimeIsAdvanced) {
    VirtualRunLoop runLoop;
    Timer timer;
    timer.start(runLoop, 1s, Repeat::no, [] { FAIL(); });
    runLoop.post([] { FAIL(); });
}

TEST(VirtualRunLoop, FiresInOrderOfDeadlineAndThenOfScheduling) {
    VirtualRunLoop runLoop;
    std::string order;
    Timer late;
    Timer first;
    Timer second;
    late.start(runLoop, 2s, Repeat::no, [&] { order += 'c'; });
    first.start(runLoop, 1s, Repeat::no, [&] { order += 'a'; });
    second.start(runLoop, 1s, Repeat::no, [&] { order += 'b'; });
    runLoop.advance(2s);
    EXPECT_EQ(order, "abc");
}

TEST(VirtualRunLoop, BothClocksJumpFromDeadlineToDeadline) {
    VirtualRunLoop runLoop;
    const auto wall = runLoop.wallNow();
    const auto monotonic = runLoop.monotonicNow();
    std::vector<Duration> fired;
    Timer timer;
    timer.start(runLoop, 30s, Repeat::yes, [&] {
        EXPECT_EQ(runLoop.wallNow() - wall, runLoop.monotonicNow() - monotonic);
        fired.push_back(runLoop.wallNow() - wall);
    });
    runLoop.advance(100s);
    EXPECT_EQ(fired, (std::vector<Duration>{30s, 60s, 90s}));
    EXPECT_EQ(runLoop.wallNow() - wall, 100s);
}

TEST(VirtualRunLoop, TimerScheduledWhileAdvancingFiresInTheSameAdvance) {
    VirtualRunLoop runLoop;
    int fired = 0;
    Timer outer;
    Timer inner;
    outer.start(runLoop, 1s, Repeat::no,
                [&] { inner.start(runLoop, 1s, Repeat::no, [&] { ++fired; }); });
    runLoop.advance(2s);
    EXPECT_EQ(fired, 1);
}

TEST(VirtualRunLoop, PostedActionsRunBeforeTheNextDeadline) {
    VirtualRunLoop runLoop;
    std::string order;
    Timer timer;
    Timer next;
    timer.start(runLoop, 1s, Repeat::no, [&] { runLoop.post([&] { order += 'p'; }); });
    next.start(runLoop, 1s, Repeat::no, [&] { order += 't'; });
    runLoop.advance(1s);
    EXPECT_EQ(order, "pt");
}

TEST(VirtualRunLoop, SuspendMovesOnlyTheWallClock) {
    VirtualRunLoop runLoop;
    const auto wall = runLoop.wallNow();
    int fired = 0;
    Timer timer;
    timer.start(runLoop, 1s, Repeat::yes, [&] { ++fired; });
    runLoop.suspend(8h);
    runLoop.advance(1s);
    EXPECT_EQ(fired, 1);
    EXPECT_EQ(runLoop.wallNow() - wall, 8h + 1s);
}

TEST(VirtualRunLoop, SettingTheWallClockBackDoesNotMoveDeadlines) {
    VirtualRunLoop runLoop;
    const auto wall = runLoop.wallNow();
    int fired = 0;
    Timer timer;
    timer.start(runLoop, 1s, Repeat::no, [&] { ++fired; });
    runLoop.setWallClock(wall - 1h);
    runLoop.advance(1s);
    EXPECT_EQ(fired, 1);
    EXPECT_EQ(runLoop.wallNow(), wall - 1h + 1s);
}

TEST(VirtualRunLoop, NothingFiresAfterStop) {
    VirtualRunLoop runLoop;
    int fired = 0;
    Timer stopping;
    Timer after;
    stopping.start(runLoop, 1s, Repeat::no, [&] {
        runLoop.post([&] { ++fired; });
        runLoop.stop();
    });
    after.start(runLoop, 1s, Repeat::yes, [&] { ++fired; });
    runLoop.advance(10s);
    EXPECT_EQ(fired, 0);
}

} // namespace
} // namespace nocta
