#include "backends/linux/GammaRamp.h"

#include <algorithm>
#include <cmath>

namespace nocta {

namespace {

constexpr double highestLevel = 65535;

/// The value at `position` (0.0–1.0) along evenly spaced points, at least one.
template <class Point>
double interpolated(std::span<const Point> points, double position) {
    auto const place = position * static_cast<double>(points.size() - 1);
    auto const index = static_cast<std::size_t>(place);
    auto const fraction = place - static_cast<double>(index);
    if (fraction == 0) {
        return points[index];
    }
    return points[index] + fraction * (static_cast<double>(points[index + 1]) - points[index]);
}

} // namespace

bool GammaRamp::isCalibration() const {
    bool rises = false;
    for (auto const* const channel : {&red, &green, &blue}) {
        if (!std::ranges::is_sorted(*channel)) {
            return false;
        }
        rises = rises || (!channel->empty() && channel->back() > 0);
    }
    return rises;
}

std::vector<std::uint16_t> laidOver(std::span<const float> table,
                                    std::span<const std::uint16_t> calibration, std::size_t size) {
    std::vector<std::uint16_t> ramp(size);
    for (std::size_t i = 0; i < size; ++i) {
        auto const position =
            size < 2 ? 1.0 : static_cast<double>(i) / static_cast<double>(size - 1);
        auto const level = interpolated(table, position);
        auto const limited = level > 0 ? std::min(level, 1.0) : 0.0; // not a number gives 0
        auto const output =
            calibration.empty() ? limited * highestLevel : interpolated(calibration, limited);
        ramp[i] = static_cast<std::uint16_t>(std::lround(output));
    }
    return ramp;
}

} // namespace nocta
