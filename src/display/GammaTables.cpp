#include "display/GammaTables.h"

#include <algorithm>
#include <cmath>

namespace nocta {

namespace {

// The luminance weights of ITU-R BT.601.
constexpr float redWeight = 0.299F;
constexpr float greenWeight = 0.587F;
constexpr float blueWeight = 0.114F;

/// The input levels i / 255.
constexpr auto inputLevels = [] {
    std::array<float, gammaTableSize> levels{};
    for (std::size_t i = 0; i < levels.size(); ++i) {
        levels[i] = static_cast<float>(i) / 255.0F;
    }
    return levels;
}();

} // namespace

float clamp01(float value) {
    return std::max(std::min(value, 1.0F), 0.0F);
}

RGBMultipliers rgbMultipliers(std::int64_t kelvin) {
    const auto t = static_cast<float>(kelvin) / 100.0F;
    RGBMultipliers white;
    if (t <= 66.0F) {
        white.green = clamp01((99.4708023F * std::log(t) - 161.119568F) / 255.0F);
    } else {
        const auto b = t - 60.0F;
        white.red = clamp01(329.698730F * std::pow(b, -0.133204758F) / 255.0F);
        white.green = clamp01(288.122162F * std::pow(b, -0.0755148456F) / 255.0F);
    }
    if (t <= 19.0F) {
        white.blue = 0.0F;
    } else if (t < 66.0F) {
        white.blue = clamp01((138.517731F * std::log(t - 10.0F) - 305.044800F) / 255.0F);
    }
    return white;
}

GammaTables makeGammaTables(std::int64_t kelvin, float dimming, float saturation) {
    const auto white = rgbMultipliers(kelvin);
    const auto luminance =
        redWeight * white.red + greenWeight * white.green + blueWeight * white.blue;
    const auto s = clamp01(saturation);
    const auto k = 1.0F - s;
    const auto height = 1.0F - dimming;

    GammaTables tables;
    for (std::size_t i = 0; i < gammaTableSize; ++i) {
        const auto x = height * inputLevels[i];
        const auto gray = k * (luminance * x);
        tables.red[i] = s * (white.red * x) + gray;
        tables.green[i] = s * (white.green * x) + gray;
        tables.blue[i] = s * (white.blue * x) + gray;
    }
    return tables;
}

} // namespace nocta
