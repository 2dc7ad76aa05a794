#pragma once

#include "base/RunLoop.h"
#include "base/Timer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace nocta {

/// The contract of every run loop, and of `Timer` on top of it. `Harness` has a `runLoop` and
/// `runUntil(condition)`, which runs the loop until the condition holds and returns false if it
/// times out.
template <class Harness>
class RunLoopContract : public ::testing::Test {
protected:
    static constexpr Duration tick = std::chrono::milliseconds(2);

    /// Runs the loop for this many ticks, so that every timer that is due can fire.
    void letPass(int ticks) {
        bool passed = false;
        Timer timer;
        timer.start(loop(), ticks * tick, Repeat::no, [&] { passed = true; });
        ASSERT_TRUE(harness.runUntil([&] { return passed; }));
    }

    RunLoop& loop() { return harness.runLoop; }

    Harness harness;
};

TYPED_TEST_SUITE_P(RunLoopContract);

TYPED_TEST_P(RunLoopContract, PostedActionsRunLaterAndInOrder) {
    std::string order;
    this->loop().post([&] { order += 'a'; });
    this->loop().post([&] { order += 'b'; });
    EXPECT_EQ(order, "");
    EXPECT_TRUE(this->harness.runUntil([&] { return order == "ab"; })) << order;
}

TYPED_TEST_P(RunLoopContract, OneShotTimerFiresOnceAndIsInvalidWhenItFires) {
    int fired = 0;
    Timer timer;
    timer.start(this->loop(), this->tick, Repeat::no, [&] {
        ++fired;
        EXPECT_FALSE(timer.isValid());
    });
    EXPECT_TRUE(timer.isValid());
    this->letPass(5);
    EXPECT_EQ(fired, 1);
}

TYPED_TEST_P(RunLoopContract, RepeatingTimerFiresUntilItIsInvalidatedInItsOwnAction) {
    int fired = 0;
    Timer timer;
    timer.start(this->loop(), this->tick, Repeat::yes, [&] {
        if (++fired == 3) {
            timer.invalidate();
        }
    });
    EXPECT_TRUE(this->harness.runUntil([&] { return fired == 3; }));
    this->letPass(5);
    EXPECT_EQ(fired, 3);
    EXPECT_FALSE(timer.isValid());
}

TYPED_TEST_P(RunLoopContract, RepeatingActionKeepsItsCaptures) {
    int last = 0;
    Timer timer;
    timer.start(this->loop(), this->tick, Repeat::yes,
                [&last, count = 0]() mutable { last = ++count; });
    EXPECT_TRUE(this->harness.runUntil([&] { return last == 3; }));
}

TYPED_TEST_P(RunLoopContract, TimerDoesNotFireBeforeItsTime) {
    const auto start = this->loop().monotonicNow();
    std::optional<MonotonicTime> fired;
    Timer timer;
    timer.start(this->loop(), 3 * this->tick, Repeat::no,
                [&] { fired = this->loop().monotonicNow(); });
    ASSERT_TRUE(this->harness.runUntil([&] { return fired.has_value(); }));
    EXPECT_GE(*fired - start, 3 * this->tick);
}

TYPED_TEST_P(RunLoopContract, TimerMayBeDestroyedInItsOwnAction) {
    const auto token = std::make_shared<int>(0);
    auto timer = std::make_unique<Timer>();
    timer->start(this->loop(), this->tick, Repeat::yes, [&timer, token] {
        timer.reset();
        ++*token; // the action's captures must still exist
    });
    EXPECT_TRUE(this->harness.runUntil([&] { return *token > 0; }));
    this->letPass(5);
    EXPECT_EQ(*token, 1);
}

TYPED_TEST_P(RunLoopContract, TimerMayBeRestartedInItsOwnAction) {
    std::string order;
    Timer timer;
    timer.start(this->loop(), this->tick, Repeat::no, [&] {
        order += 'a';
        timer.start(this->loop(), this->tick, Repeat::no, [&] { order += 'b'; });
    });
    EXPECT_TRUE(this->harness.runUntil([&] { return order == "ab"; })) << order;
}

TYPED_TEST_P(RunLoopContract, StartingATimerReplacesTheRunningOne) {
    int first = 0;
    int second = 0;
    Timer timer;
    timer.start(this->loop(), this->tick, Repeat::yes, [&] { ++first; });
    timer.start(this->loop(), this->tick, Repeat::yes, [&] { ++second; });
    EXPECT_TRUE(this->harness.runUntil([&] { return second == 2; }));
    EXPECT_EQ(first, 0);
}

TYPED_TEST_P(RunLoopContract, DestroyedTimerDoesNotFire) {
    {
        Timer timer;
        timer.start(this->loop(), this->tick, Repeat::no, [] { FAIL(); });
    }
    this->letPass(5);
}

REGISTER_TYPED_TEST_SUITE_P(RunLoopContract, PostedActionsRunLaterAndInOrder,
                            OneShotTimerFiresOnceAndIsInvalidWhenItFires,
                            RepeatingTimerFiresUntilItIsInvalidatedInItsOwnAction,
                            RepeatingActionKeepsItsCaptures, TimerDoesNotFireBeforeItsTime,
                            TimerMayBeDestroyedInItsOwnAction, TimerMayBeRestartedInItsOwnAction,
                            StartingATimerReplacesTheRunningOne, DestroyedTimerDoesNotFire);

} // namespace nocta
