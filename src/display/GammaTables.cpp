#include "display/GammaTables.h"

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
