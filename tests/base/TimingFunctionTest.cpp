#include "base/TimingFunction.h"

#include <gtest/gtest.h>

#include <cmath>

namespace nocta {
namespace {

constexpr auto in = TimingFunction::easeIn;
constexpr auto inOut = TimingFunction::easeInEaseOut;

TEST(TimingFunction, BeginsAtZeroAndEndsAtOne) {
    for (const auto function : {in, inOut}) {
        EXPECT_NEAR(eased(function, 0), 0, 1e-9);
        EXPECT_NEAR(eased(function, 1), 1, 1e-9);
    }
}

TEST(TimingFunction, EaseInEaseOutIsSymmetricAndEaseInIsNot) {
    EXPECT_NEAR(eased(inOut, 0.5), 0.5, 1e-9);
    for (double time = 0; time < 0.5; time += 0.01) {
        EXPECT_NEAR(eased(inOut, time) + eased(inOut, 1 - time), 1, 1e-9);
    }
    EXPECT_LT(eased(in, 0.5), 0.4);
}

TEST(TimingFunction, PassesThroughThePointsOfTheCurve) {
    // Points of the curve, computed from the curve's parameter.
    for (double s = 0; s <= 1; s += 0.05) {
        const auto y = 3 * (1 - s) * s * s + s * s * s;
        const auto x = [&](double second) {
            return 3 * (1 - s) * (1 - s) * s * 0.42 + 3 * (1 - s) * s * s * second + s * s * s;
        };
        EXPECT_NEAR(eased(in, x(1)), y, 1e-6);
        EXPECT_NEAR(eased(inOut, x(0.58)), y, 1e-6);
    }
}

TEST(TimingFunction, NeverDecreases) {
    for (const auto function : {in, inOut}) {
        double last = 0;
        for (int i = 1; i <= 1000; ++i) {
            const auto now = eased(function, i / 1000.0);
            EXPECT_GE(now, last);
            last = now;
        }
    }
}

} // namespace
} // namespace nocta
