#include "base/SteppedAnimation.h"

#include "backends/virtual/VirtualRunLoop.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

namespace nocta {
namespace {

using namespace std::chrono_literals;

class SteppedAnimationTest : public ::testing::Test {
protected:
    VirtualRunLoop runLoop;
    std::optional<SteppedAnimation> animation{std::in_place};
    std::vector<int> shown;
    int completions = 0;

    void start(int steps) {
        animation->start(
            runLoop, steps, 20ms, [this](int step) { shown.push_back(step); },
            [this] { ++completions; });
    }
};

TEST_F(SteppedAnimationTest, EachIntervalShowsOneStepAndTheLastIsFollowedByTheCompletion) {
    start(3);
    EXPECT_TRUE(shown.empty()) << "the first step should come after the first interval";
    runLoop.advance(20ms);
    EXPECT_EQ(shown, (std::vector{1}));
    runLoop.advance(20ms);
    EXPECT_EQ(completions, 0);
    runLoop.advance(20ms);
    EXPECT_EQ(shown, (std::vector{1, 2, 3}));
    EXPECT_EQ(completions, 1);
    runLoop.advance(1h);
    EXPECT_EQ(shown.size(), 3U);
    EXPECT_EQ(completions, 1);
}

TEST_F(SteppedAnimationTest, StartReplacesTheRunningAnimationWithoutCompletingIt) {
    start(2);
    runLoop.advance(20ms);
    start(2);
    runLoop.advance(40ms);
    EXPECT_EQ(shown, (std::vector{1, 1, 2}));
    EXPECT_EQ(completions, 1);
}

TEST_F(SteppedAnimationTest, InvalidatedAnimationStopsAtItsCurrentStep) {
    start(3);
    runLoop.advance(20ms);
    animation->invalidate();
    runLoop.advance(1h);
    EXPECT_EQ(shown, (std::vector{1}));
    EXPECT_EQ(completions, 0);
}

TEST_F(SteppedAnimationTest, DestroyedAnimationStops) {
    start(3);
    runLoop.advance(20ms);
    animation.reset();
    runLoop.advance(1h);
    EXPECT_EQ(shown, (std::vector{1}));
}

TEST_F(SteppedAnimationTest, CompletionMayStartTheNextAnimationOrDestroyThisOne) {
    animation->start(
        runLoop, 1, 20ms, [](int /*step*/) {}, [this] { start(1); });
    runLoop.advance(40ms);
    EXPECT_EQ(shown, (std::vector{1}));
    animation->start(
        runLoop, 1, 20ms, [](int /*step*/) {}, [this] { animation.reset(); });
    runLoop.advance(20ms);
    EXPECT_FALSE(animation);
}

TEST_F(SteppedAnimationTest, CompletionIsOptional) {
    animation->start(runLoop, 1, 20ms, [this](int step) { shown.push_back(step); }, {});
    runLoop.advance(20ms);
    EXPECT_EQ(shown, (std::vector{1}));
}

} // namespace
} // namespace nocta
