#include "base/AlphaFade.h"

#include "backends/virtual/VirtualRunLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <vector>

namespace nocta {
namespace {

using namespace std::chrono_literals;

class AlphaFadeTest : public ::testing::Test {
protected:
    VirtualRunLoop runLoop;
    std::optional<AlphaFade> fade{std::in_place};
    std::vector<double> shown;
    int completions = 0;

    void start(AlphaFade::Way way, Duration duration, TimingFunction curve) {
        fade->start(
            runLoop, way, duration, curve, [this](double alpha) { shown.push_back(alpha); },
            [this] { ++completions; });
    }
};

TEST_F(AlphaFadeTest, FadeFollowsTheCurveAtSixtyFramesPerSecondAndEndsExactly) {
    start({.from = 0.2, .to = 0.7}, 500ms, TimingFunction::easeIn);
    runLoop.advance(499ms);
    EXPECT_EQ(shown.size(), 29U);
    EXPECT_EQ(completions, 0);
    runLoop.advance(1ms);
    ASSERT_EQ(shown.size(), 30U);
    EXPECT_EQ(completions, 1);
    EXPECT_TRUE(std::ranges::is_sorted(shown));
    EXPECT_NEAR(shown.at(14), 0.2 + 0.5 * eased(TimingFunction::easeIn, 0.5), 1e-12);
    EXPECT_EQ(shown.back(), 0.7);
}

TEST_F(AlphaFadeTest, FadeTooShortForAFrameShowsItsEndValue) {
    start({.from = 1, .to = 0}, 1ms, TimingFunction::easeInEaseOut);
    runLoop.advance(1ms);
    EXPECT_EQ(shown, (std::vector{0.0}));
    EXPECT_EQ(completions, 1);
}

TEST_F(AlphaFadeTest, StartReplacesTheRunningFadeWithoutCompletingIt) {
    start({.from = 0, .to = 1}, 500ms, TimingFunction::easeIn);
    runLoop.advance(100ms);
    shown.clear();
    start({.from = 1, .to = 0}, 500ms, TimingFunction::easeIn);
    runLoop.advance(1s);
    EXPECT_TRUE(std::ranges::is_sorted(shown, std::greater()));
    EXPECT_EQ(completions, 1);
}

TEST_F(AlphaFadeTest, DestroyedFadeStops) {
    start({.from = 0, .to = 1}, 500ms, TimingFunction::easeIn);
    fade.reset();
    runLoop.advance(1s);
    EXPECT_TRUE(shown.empty());
    EXPECT_EQ(completions, 0);
}

} // namespace
} // namespace nocta
