#pragma once

#include <array>
#include <cmath>

namespace nocta {

/// The color of a black body at 2000–6600 K as red, green and blue (0.0–1.0).
inline std::array<double, 3> whitePoint(double kelvin) {
    return {1.0, (99.4708025861 * std::log(kelvin / 100) - 161.1195681661) / 255,
            (138.5177312231 * std::log(kelvin / 100 - 10) - 305.0447927307) / 255};
}

} // namespace nocta
