#include "base/WhitePoint.h"

#include <algorithm>
#include <cmath>

namespace nocta {

namespace {

constexpr std::int64_t lowestTemperature = 1000; // kelvin

/// Increases with the temperature, up to the neutral temperature.
float coolness(const RGBMultipliers& white) {
    return (white.green + white.blue) / white.red;
}

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

std::int64_t temperatureOf(const RGBMultipliers& white) {
    if (!(white.red > 0)) {
        return neutralTemperature;
    }
    auto low = lowestTemperature;
    auto high = neutralTemperature;
    while (low < high) {
        const auto middle = (low + high) / 2;
        if (coolness(rgbMultipliers(middle)) < coolness(white)) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

} // namespace nocta
