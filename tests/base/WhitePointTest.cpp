#include "base/WhitePoint.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace nocta {
namespace {

TEST(WhitePoint, TemperatureIsFoundAtEveryBrightness) {
    for (const auto brightness : {1.0F, 0.5F, 0.01F}) {
        for (std::int64_t kelvin = 1000; kelvin <= 6500; ++kelvin) {
            const auto white = rgbMultipliers(kelvin);
            const RGBMultipliers dimmed{.red = brightness * white.red,
                                        .green = brightness * white.green,
                                        .blue = brightness * white.blue};
            ASSERT_NEAR(static_cast<double>(temperatureOf(dimmed)), static_cast<double>(kelvin), 1)
                << brightness;
        }
    }
}

TEST(WhitePoint, ColorsWithoutWarmthAreNeutral) {
    EXPECT_EQ(temperatureOf({}), 6500);
    EXPECT_EQ(temperatureOf(rgbMultipliers(10000)), 6500);
    EXPECT_EQ(temperatureOf({.red = 0, .green = 0, .blue = 0}), 6500);
    EXPECT_EQ(temperatureOf({.red = 0, .green = 1, .blue = 1}), 6500);
}

TEST(WhitePoint, PureRedHasTheLowestTemperature) {
    EXPECT_EQ(temperatureOf({.red = 1, .green = 0, .blue = 0}), 1000);
}

} // namespace
} // namespace nocta
