#include "backends/linux/gamma/GammaRamp.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace nocta {
namespace {

std::vector<float> line(float top) {
    std::vector<float> table;
    for (int i = 0; i < 256; ++i) {
        table.push_back(top * static_cast<float>(i) / 255.0F);
    }
    return table;
}

std::vector<std::uint16_t> curve(std::size_t size, double exponent) {
    std::vector<std::uint16_t> ramp;
    for (std::size_t i = 0; i < size; ++i) {
        const auto level = static_cast<double>(i) / static_cast<double>(size - 1);
        ramp.push_back(static_cast<std::uint16_t>(std::lround(65535 * std::pow(level, exponent))));
    }
    return ramp;
}

class GammaRampSizes : public ::testing::TestWithParam<std::size_t> {};
INSTANTIATE_TEST_SUITE_P(TypicalSizes, GammaRampSizes, ::testing::Values(256, 1024, 2048, 4096));

TEST_P(GammaRampSizes, NeutralTableReproducesTheCalibration) {
    const auto calibration = curve(GetParam(), 0.8);
    const auto ramp = laidOver(line(1), calibration, GetParam());
    ASSERT_EQ(ramp.size(), GetParam());
    for (std::size_t i = 0; i < ramp.size(); ++i) {
        ASSERT_NEAR(ramp[i], calibration[i], 1) << i;
    }
}

TEST_P(GammaRampSizes, TableIsAppliedBeforeTheCalibration) {
    const auto ramp = laidOver(line(0.5F), curve(GetParam(), 2), GetParam());
    for (std::size_t i = 0; i < ramp.size(); ++i) {
        const auto level = static_cast<double>(i) / static_cast<double>(ramp.size() - 1);
        // Linear interpolation between 256 points of a parabola is off by less than 1/8 of the
        // squared distance between two points.
        ASSERT_NEAR(ramp[i], 65535 * std::pow(0.5 * level, 2), 1.5) << i;
    }
}

TEST_P(GammaRampSizes, TableIsResampledWithoutACalibration) {
    const auto ramp = laidOver(line(0.75F), {}, GetParam());
    for (std::size_t i = 0; i < ramp.size(); ++i) {
        const auto level = static_cast<double>(i) / static_cast<double>(ramp.size() - 1);
        ASSERT_NEAR(ramp[i], 0.75 * 65535 * level, 1) << i;
    }
}

TEST(GammaRamp, LevelsOutsideTheRangeAreClamped) {
    const std::vector<float> table = {-1.0F, 2.0F, std::numeric_limits<float>::quiet_NaN(),
                                      std::numeric_limits<float>::infinity()};
    EXPECT_EQ(laidOver(table, {}, 4), (std::vector<std::uint16_t>{0, 65535, 0, 65535}));
}

TEST(GammaRamp, SmallestSizesAreSupported) {
    EXPECT_TRUE(laidOver(line(1), {}, 0).empty());
    EXPECT_EQ(laidOver(line(0.5F), {}, 1), std::vector<std::uint16_t>{32768});
    EXPECT_EQ(laidOver(line(1), std::vector<std::uint16_t>{7}, 2),
              (std::vector<std::uint16_t>{7, 7}));
}

TEST(GammaRamp, DecreasingOrAllZeroRampIsNotACalibration) {
    const GammaRamp rising{{0, 1, 2}, {0, 0, 5}, {3, 3, 3}};
    EXPECT_TRUE(rising.isCalibration());
    const GammaRamp falling{{0, 1, 2}, {0, 5, 4}, {0, 1, 2}};
    EXPECT_FALSE(falling.isCalibration());
    const GammaRamp zero{{0, 0}, {0, 0}, {0, 0}};
    EXPECT_FALSE(zero.isCalibration());
    const GammaRamp oneDarkChannel{{0, 9}, {0, 9}, {0, 0}};
    EXPECT_TRUE(oneDarkChannel.isCalibration());
    EXPECT_FALSE(GammaRamp().isCalibration());
}

} // namespace
} // namespace nocta
