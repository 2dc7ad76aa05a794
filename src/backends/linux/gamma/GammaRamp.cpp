#include "backends/linux/gamma/GammaRamp.h"

#include <algorithm>
#include <cmath>

namespace nocta {

namespace {

constexpr double highestLevel = 65535;

/// The interpolated value at `position` (0.0–1.0) along evenly spaced points. There is at least one
/// point.
template <class Point>
double interpolated(std::span<const Point> points, double position) {
    const auto place = position * static_cast<double>(points.size() - 1);
    const auto index = static_cast<std::size_t>(place);
    const auto fraction = place - static_cast<double>(index);
    if (fraction == 0) {
        return points[index];
    }
    return points[index] + fraction * (static_cast<double>(points[index + 1]) - points[index]);
}

} // namespace

bool GammaRamp::isCalibration() const {
    bool rises = false;
    for (const auto* const channel : {&red, &green, &blue}) {
        if (!std::ranges::is_sorted(*channel)) {
            return false;
        }
        rises = rises || (!channel->empty() && channel->back() > 0);
    }
    return rises;
}

TransferTables copyOf(std::span<const float> red, std::span<const float> green,
                      std::span<const float> blue) {
    return {{{red.begin(), red.end()}, {green.begin(), green.end()}, {blue.begin(), blue.end()}}};
}

std::vector<std::uint16_t> laidOver(std::span<const float> table,
                                    std::span<const std::uint16_t> calibration, std::size_t size) {
    std::vector<std::uint16_t> ramp(size);
    for (std::size_t i = 0; i < size; ++i) {
        const auto position =
            size < 2 ? 1.0 : static_cast<double>(i) / static_cast<double>(size - 1);
        const auto level = interpolated(table, position);
        const auto limited = level > 0 ? std::min(level, 1.0) : 0.0; // NaN gives 0
        const auto output =
            calibration.empty() ? limited * highestLevel : interpolated(calibration, limited);
        ramp[i] = static_cast<std::uint16_t>(std::lround(output));
    }
    return ramp;
}

GammaRamp laidOver(const TransferTables& tables, const GammaRamp& factory, bool isCalibration) {
    const auto channel = [&](std::size_t index, const std::vector<std::uint16_t>& levels) {
        const auto calibration = std::span(levels);
        return laidOver(tables[index], isCalibration ? calibration : calibration.first(0),
                        levels.size());
    };
    return {.red = channel(0, factory.red),
            .green = channel(1, factory.green),
            .blue = channel(2, factory.blue)};
}

} // namespace nocta
