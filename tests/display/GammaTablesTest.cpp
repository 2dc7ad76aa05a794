#include "display/GammaTables.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>

namespace nocta {
namespace {

double clamped(double value) {
    return std::max(std::min(value, 1.0), 0.0);
}

/// Computes the white point in double precision.
struct White {
    double red = 1;
    double green = 1;
    double blue = 1;

    explicit White(double kelvin) {
        const auto t = kelvin / 100;
        if (t <= 66) {
            green = clamped((99.4708025861 * std::log(t) - 161.1195681661) / 255);
        } else {
            red = clamped(329.698727446 * std::pow(t - 60, -0.1332047592) / 255);
            green = clamped(288.1221695283 * std::pow(t - 60, -0.0755148492) / 255);
        }
        if (t < 66) {
            blue =
                t <= 19 ? 0 : clamped((138.5177312231 * std::log(t - 10) - 305.0447927307) / 255);
        }
    }
};

constexpr double singlePrecision = 2e-6;

TEST(GammaTables, WhitePointAgreesWithDoublePrecisionAtEveryKelvin) {
    for (std::int64_t kelvin = 1000; kelvin <= 10000; ++kelvin) {
        const White expected(static_cast<double>(kelvin));
        const auto white = rgbMultipliers(kelvin);
        ASSERT_NEAR(white.red, expected.red, singlePrecision) << kelvin;
        ASSERT_NEAR(white.green, expected.green, singlePrecision) << kelvin;
        ASSERT_NEAR(white.blue, expected.blue, singlePrecision) << kelvin;
    }
}

TEST(GammaTables, WhitePointIsCorrectAtItsBoundaries) {
    const auto at1900 = rgbMultipliers(1900);
    EXPECT_EQ(at1900.blue, 0.0F);
    const auto at1910 = rgbMultipliers(1910);
    EXPECT_GT(at1910.blue, 0.0F);
    EXPECT_LT(at1910.blue, 0.01F);
    const auto at6500 = rgbMultipliers(6500);
    EXPECT_EQ(at6500.red, 1.0F);
    EXPECT_NEAR(at6500.green, 0.9965, 5e-5);
    EXPECT_NEAR(at6500.blue, 0.9806, 5e-5);
    const auto at6600 = rgbMultipliers(6600);
    EXPECT_EQ(at6600.red, 1.0F);
    EXPECT_EQ(at6600.green, 1.0F) << "the lower branch, which exceeds 1 there, should be clamped";
    EXPECT_EQ(at6600.blue, 1.0F);
    const auto at6601 = rgbMultipliers(6601);
    EXPECT_NEAR(at6601.green, 288.122162 * std::pow(6.01, -0.0755148456) / 255, singlePrecision);
    EXPECT_EQ(at6601.blue, 1.0F);
}

TEST(GammaTables, SinglePrecisionArithmeticIsExactToTheBit) {
    const auto constant = [](std::uint32_t bits) { return std::bit_cast<float>(bits); };
    for (std::int64_t kelvin = 1000; kelvin <= 10000; kelvin += 7) {
        const auto t = static_cast<float>(kelvin) / 100.0F;
        float green = 0;
        if (t <= 66.0F) {
            green = constant(0x42C6F10D) * std::log(t) - constant(0x43211E9C);
        } else {
            green = constant(0x43900FA3) * std::pow(t - 60.0F, -constant(0x3D9AA787));
        }
        EXPECT_EQ(rgbMultipliers(kelvin).green, clamp01(green / 255.0F)) << kelvin;
        if (t > 66.0F) {
            const auto red = constant(0x43A4D970) * std::pow(t - 60.0F, -constant(0x3E0866D4));
            EXPECT_EQ(rgbMultipliers(kelvin).red, clamp01(red / 255.0F)) << kelvin;
        } else if (t > 19.0F && t < 66.0F) {
            const auto blue = constant(0x430A848A) * std::log(t - 10.0F) - constant(0x439885BC);
            EXPECT_EQ(rgbMultipliers(kelvin).blue, clamp01(blue / 255.0F)) << kelvin;
        }
    }
}

TEST(GammaTables, TablesAgreeWithAnIndependentComputation) {
    std::mt19937 random(1);
    std::uniform_int_distribution<std::int64_t> kelvins(1000, 10000);
    std::uniform_real_distribution<float> fractions(0, 1);
    for (int round = 0; round < 500; ++round) {
        const auto kelvin = kelvins(random);
        const auto dimming = fractions(random);
        const auto saturation = fractions(random);
        const White white(static_cast<double>(kelvin));
        const auto luminance = 0.299 * white.red + 0.587 * white.green + 0.114 * white.blue;
        const auto tables = makeGammaTables(kelvin, dimming, saturation);
        for (std::size_t i = 0; i < gammaTableSize; ++i) {
            const auto x = (1.0 - double{dimming}) * static_cast<double>(i) / 255;
            const auto gray = (1.0 - double{saturation}) * luminance;
            ASSERT_NEAR(tables.red[i], x * (saturation * white.red + gray), singlePrecision);
            ASSERT_NEAR(tables.green[i], x * (saturation * white.green + gray), singlePrecision);
            ASSERT_NEAR(tables.blue[i], x * (saturation * white.blue + gray), singlePrecision);
        }
    }
}

TEST(GammaTables, OrderOfTheArithmeticIsExactToTheBit) {
    constexpr float dimming = 0.37F;
    constexpr float saturation = 0.6F;
    for (const auto kelvin : {3100, 8000}) { // no channel is 1 at both
        const auto white = rgbMultipliers(kelvin);
        const auto luminance = 0.299F * white.red + 0.587F * white.green + 0.114F * white.blue;
        const auto tables = makeGammaTables(kelvin, dimming, saturation);
        for (std::size_t i = 0; i < gammaTableSize; ++i) {
            const float x = (1.0F - dimming) * (static_cast<float>(i) / 255.0F);
            const float gray = (1.0F - saturation) * (luminance * x);
            const auto expected = [&](float channel) {
                const float colored = saturation * (channel * x);
                return colored + gray;
            };
            EXPECT_EQ(tables.red[i], expected(white.red)) << kelvin << " " << i;
            EXPECT_EQ(tables.green[i], expected(white.green)) << kelvin << " " << i;
            EXPECT_EQ(tables.blue[i], expected(white.blue)) << kelvin << " " << i;
        }
    }
}

TEST(GammaTables, DimmingOutsideItsRangeIsNotClamped) {
    const auto beyondBlack = makeGammaTables(6500, 1.5F, 1.0F);
    EXPECT_EQ(beyondBlack.red.front(), 0.0F);
    EXPECT_EQ(beyondBlack.red.back(), -0.5F);
    const auto beyondLight = makeGammaTables(6500, -0.5F, 1.0F);
    EXPECT_EQ(beyondLight.red.front(), 0.0F);
    EXPECT_EQ(beyondLight.red.back(), 1.5F);
}

TEST(GammaTables, FullDimmingIsBlack) {
    const auto tables = makeGammaTables(4000, 1.0F, 1.0F);
    for (std::size_t i = 0; i < gammaTableSize; ++i) {
        EXPECT_EQ(tables.red[i], 0.0F);
        EXPECT_EQ(tables.green[i], 0.0F);
        EXPECT_EQ(tables.blue[i], 0.0F);
    }
}

TEST(GammaTables, WithoutSaturationTheThreeTablesAreEqual) {
    for (const auto kelvin : {1000, 2700, 6500, 10000}) {
        const auto tables = makeGammaTables(kelvin, 0.3F, 0.0F);
        EXPECT_EQ(tables.red, tables.green) << kelvin;
        EXPECT_EQ(tables.red, tables.blue) << kelvin;
    }
}

TEST(GammaTables, SaturationIsLimited) {
    EXPECT_EQ(makeGammaTables(2700, 0.0F, 1.5F).blue, makeGammaTables(2700, 0.0F, 1.0F).blue);
    EXPECT_EQ(makeGammaTables(2700, 0.0F, -0.5F).blue, makeGammaTables(2700, 0.0F, 0.0F).blue);
}

} // namespace
} // namespace nocta
