#include "ui/Percent.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace nocta {

int wholePercent(double fraction) {
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double highest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(fraction * 100, lowest, highest));
}

double fractionOfPercent(int percent) {
    auto fraction = percent / 100.0;
    while (wholePercent(fraction) < percent) {
        fraction = std::nextafter(fraction, std::numeric_limits<double>::infinity());
    }
    return fraction;
}

} // namespace nocta
