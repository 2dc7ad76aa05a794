#pragma once

#include <cstdint>

namespace nocta {

/// The white point of a color temperature. Each channel is in 0.0–1.0.
struct RGBMultipliers {
    float red = 1.0F;
    float green = 1.0F;
    float blue = 1.0F;
};

/// Limits a value to 0.0–1.0.
float clamp01(float value);

/// Returns the white point of a black body at `kelvin`, which must be in 1000–10000. Source: Tanner
/// Helland's fit to Mitchell Charity's black body table, with the constants in single precision.
RGBMultipliers rgbMultipliers(std::int64_t kelvin);

/// The color temperature that leaves white unchanged.
inline constexpr std::int64_t neutralTemperature = 6500; // kelvin

/// Returns the temperature in 1000–6500 K whose white point has the same color as `white`,
/// regardless of its brightness. Black is treated as neutral.
std::int64_t temperatureOf(const RGBMultipliers& white);

} // namespace nocta
