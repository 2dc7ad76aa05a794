#include "base/TimedAnimation.h"

#include "backends/virtual/VirtualRunLoop.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <utility>
#include <vector>

namespace nocta {
namespace {

using namespace std::chrono_literals;

/// A run loop that rounds timers up to whole milliseconds, as toolkits do, and can be delayed.
class RoundingRunLoop final : public RunLoop {
public:
    VirtualRunLoop exact;
    Duration lateness{};

    WallTime wallNow() const override { return exact.wallNow(); }
    MonotonicTime monotonicNow() const override { return exact.monotonicNow(); }
    TimerId schedule(Duration interval, Repeat repeat, std::function<void()> action) override {
        const auto late = std::exchange(lateness, Duration::zero());
        return exact.schedule(std::chrono::ceil<std::chrono::milliseconds>(interval) + late, repeat,
                              std::move(action));
    }
    void cancel(TimerId timer) override { exact.cancel(timer); }
    void post(std::function<void()> action) override { exact.post(std::move(action)); }
};

struct Movement {
    std::vector<int> steps;
    std::optional<Duration> taken;
    TimedAnimation animation;

    void start(RunLoop& runLoop, int count, Duration duration) {
        const auto begin = runLoop.monotonicNow();
        animation.start(
            runLoop, count, duration, [this](int step) { steps.push_back(step); },
            [this, begin, &runLoop] { taken = runLoop.monotonicNow() - begin; });
    }
};

TEST(TimedAnimation, ShowsEachStepWhenItIsDue) {
    VirtualRunLoop runLoop;
    Movement movement;
    movement.start(runLoop, 3, 100ms); // not divisible by the number of steps
    runLoop.advance(33ms);
    EXPECT_EQ(movement.steps, (std::vector<int>{}));
    runLoop.advance(1ms);
    EXPECT_EQ(movement.steps, (std::vector<int>{1}));
    runLoop.advance(33ms);
    EXPECT_EQ(movement.steps, (std::vector<int>{1, 2}));
    EXPECT_EQ(movement.taken, std::nullopt);
    runLoop.advance(1h);
    EXPECT_EQ(movement.steps, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(movement.taken, 100ms);
}

TEST(TimedAnimation, LastStepIsOnTimeIfTimersAreRoundedUp) {
    for (const auto& [steps, duration] :
         {std::pair{24, Duration(400ms)}, {18, Duration(300ms)}, {30, Duration(1s)}}) {
        RoundingRunLoop runLoop;
        Movement movement;
        movement.start(runLoop, steps, duration);
        runLoop.exact.advance(1h);
        EXPECT_EQ(movement.taken, duration);
        EXPECT_EQ(movement.steps.size(), static_cast<std::size_t>(steps))
            << "no step should be skipped";
    }
}

TEST(TimedAnimation, LateLoopSkipsStepsAndTheLastOneIsOnTime) {
    RoundingRunLoop runLoop;
    Movement movement;
    runLoop.lateness = 45ms;
    movement.start(runLoop, 10, 100ms);
    runLoop.exact.advance(1h);
    EXPECT_EQ(movement.steps, (std::vector<int>{5, 6, 7, 8, 9, 10}));
    EXPECT_EQ(movement.taken, 100ms);
}

TEST(TimedAnimation, OnlyTheLastStepRunsIfTheLoopIsLaterThanTheEnd) {
    RoundingRunLoop runLoop;
    Movement movement;
    runLoop.lateness = 2s;
    movement.start(runLoop, 10, 100ms);
    runLoop.exact.advance(1h);
    EXPECT_EQ(movement.steps, (std::vector<int>{10}));
    EXPECT_NE(movement.taken, std::nullopt);
}

TEST(TimedAnimation, NewAnimationReplacesTheRunningOneWithoutCompletingIt) {
    VirtualRunLoop runLoop;
    TimedAnimation animation;
    std::vector<int> steps;
    int completions = 0;
    animation.start(
        runLoop, 2, 100ms, [&](int step) { steps.push_back(step); }, [&] { ++completions; });
    runLoop.advance(60ms);
    animation.start(runLoop, 2, 100ms, [&](int step) { steps.push_back(10 * step); }, {});
    runLoop.advance(1h);
    EXPECT_EQ(steps, (std::vector<int>{1, 10, 20}));
    EXPECT_EQ(completions, 0);
}

TEST(TimedAnimation, StepMayRestartTheAnimationAndCompletionMayDestroyIt) {
    VirtualRunLoop runLoop;
    std::optional<TimedAnimation> animation(std::in_place);
    std::vector<int> steps;
    animation->start(
        runLoop, 2, 100ms,
        [&](int step) {
            steps.push_back(step);
            animation->start(
                runLoop, 2, 100ms, [&](int later) { steps.push_back(10 * later); },
                [&] { animation.reset(); });
        },
        [] { ADD_FAILURE() << "a replaced animation should not complete"; });
    runLoop.advance(1h);
    EXPECT_EQ(steps, (std::vector<int>{1, 10, 20}));
    EXPECT_FALSE(animation.has_value());
}

} // namespace
} // namespace nocta
