#pragma once

#include <array>
#include <cmath>

namespace nocta {

/// Red, green and blue (0.0–1.0) of a black body's white, for temperatures from 2000 to 6600 K.
inline std::array<double, 3> whitePoint(double kelvin) {
    return {1.0, (99.4708025861 * std::log(kelvin / 100) - 161.1195681661) / 255,
            (138.5177312231 * std::log(kelvin / 100 - 10) - 305.0447927307) / 255};
}

} // namespace nocta
