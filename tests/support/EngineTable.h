#pragma once

#include "support/WhitePoint.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace nocta {

/// Whether a ramp of 256 entries (all levels of red, then of green, then of blue) matches this
/// brightness (0.0–1.0) and white point, within one 16-bit step.
inline bool isEngineTable(const std::vector<std::uint16_t>& levels, double brightness,
                          double kelvin) {
    constexpr std::size_t size = 256;
    const auto white = whitePoint(kelvin);
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const auto input = static_cast<double>(i % size) / (size - 1);
        const auto level = std::lround(65535 * brightness * white[i / size] * input);
        if (std::abs(levels[i] - level) > 1) {
            return false;
        }
    }
    return levels.size() == 3 * size;
}

} // namespace nocta
