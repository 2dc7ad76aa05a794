#include "ui/Percent.h"

#include "base/Checked.h"

#include <cmath>
#include <limits>

namespace nocta {

std::int64_t wholePercent(double fraction) {
    return truncated(fraction * 100);
}

double fractionOfPercent(int percent) {
    auto fraction = percent / 100.0;
    while (wholePercent(fraction) < percent) {
        fraction = std::nextafter(fraction, std::numeric_limits<double>::infinity());
    }
    return fraction;
}

} // namespace nocta
