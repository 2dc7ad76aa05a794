#pragma once

#include "base/WhitePoint.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace nocta {

inline constexpr std::size_t gammaTableSize = 256;

/// Output levels in 0.0–1.0 for the input levels i / 255, one table per channel.
struct GammaTables {
    std::array<float, gammaTableSize> red;
    std::array<float, gammaTableSize> green;
    std::array<float, gammaTableSize> blue;
};

/// Makes linear ramps from black to the white point of `kelvin`. `dimming`, from 0.0 (none) to 1.0
/// (black), scales the ramps down. As `saturation` decreases from 1.0 to 0.0, all three ramps
/// approach the luminance of the white point.
GammaTables makeGammaTables(std::int64_t kelvin, float dimming, float saturation);

} // namespace nocta
