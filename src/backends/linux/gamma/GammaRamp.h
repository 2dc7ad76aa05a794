#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace nocta {

/// The gamma ramp of an output: 16-bit output levels in one list per channel. All lists have the
/// same size.
struct GammaRamp {
    std::vector<std::uint16_t> red;
    std::vector<std::uint16_t> green;
    std::vector<std::uint16_t> blue;

    std::size_t size() const { return red.size(); }

    /// Whether tables can be laid over this ramp. A ramp that is all zero, as on a fresh server, or
    /// that decreases anywhere, is not a calibration.
    bool isCalibration() const;
};

/// A display's transfer tables for red, green and blue.
using TransferTables = std::array<std::vector<float>, 3>;

TransferTables copyOf(std::span<const float> red, std::span<const float> green,
                      std::span<const float> blue);

/// Lays one channel of a transfer table over a calibration: evaluates the calibration at the
/// table's levels and resamples the result to `size` entries. Both curves are evenly spaced points
/// joined by straight lines. The table's levels are limited to 0.0–1.0. An empty calibration is the
/// identity.
std::vector<std::uint16_t> laidOver(std::span<const float> table,
                                    std::span<const std::uint16_t> calibration, std::size_t size);

/// Lays tables over a factory ramp. The result has the same size as the factory ramp. The levels of
/// the factory ramp are used only if it is a calibration.
GammaRamp laidOver(const TransferTables& tables, const GammaRamp& factory, bool isCalibration);

} // namespace nocta
