#include "ui/Percent.h"

#include <gtest/gtest.h>

#include <cmath>

namespace nocta {
namespace {

TEST(Percent, FractionsAreTruncated) {
    EXPECT_EQ(wholePercent(0.755), 75);
    EXPECT_EQ(wholePercent(0.0), 0);
    EXPECT_EQ(wholePercent(0.999), 99);
    EXPECT_EQ(wholePercent(1.0), 100);
    EXPECT_EQ(wholePercent(0.29), 28)
        << "the double nearest to 0.29 is less than 0.29, so the percentage should be 28";
    EXPECT_EQ(wholePercent(0.57), 56);
    EXPECT_EQ(wholePercent(0.58), 57);
}

TEST(PercentDeathTest, PercentageTooLargeForAnIntegerStopsTheProgram) {
    EXPECT_DEATH(wholePercent(1e300), "too large for an integer");
    EXPECT_DEATH(wholePercent(std::nan("")), "too large for an integer");
}

TEST(Percent, EveryPercentageMapsToTheSmallestFractionThatShowsIt) {
    for (int percent = 0; percent <= 100; ++percent) {
        const auto fraction = fractionOfPercent(percent);
        EXPECT_EQ(wholePercent(fraction), percent);
        EXPECT_NEAR(fraction, percent / 100.0, 1e-15);
        EXPECT_LE(fraction, 1.0);
    }
}

} // namespace
} // namespace nocta
