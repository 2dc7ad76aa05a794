#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace nocta {

/// A CRTC's gamma ramp: 16-bit output levels, one list a channel, all of one size.
struct GammaRamp {
    std::vector<std::uint16_t> red;
    std::vector<std::uint16_t> green;
    std::vector<std::uint16_t> blue;

    std::size_t size() const { return red.size(); }

    /// Whether tables can be laid over this ramp: a ramp that is all zero, as a fresh server may
    /// have it, or that falls somewhere, is no calibration.
    bool isCalibration() const;
};

/// One channel of a transfer table laid over a calibration: the calibration evaluated at what the
/// table gives, resampled to `size` entries. Both are read as evenly spaced points joined by
/// straight lines; the table's levels are limited to 0.0–1.0. An empty calibration is the identity.
std::vector<std::uint16_t> laidOver(std::span<const float> table,
                                    std::span<const std::uint16_t> calibration, std::size_t size);

} // namespace nocta
