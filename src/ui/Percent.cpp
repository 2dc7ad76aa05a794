#include "ui/Percent.h"

#include <cmath>
#include <limits>

namespace nocta {

int wholePercent(double fraction) {
    return static_cast<int>(fraction * 100);
}

double fractionOfPercent(int percent) {
    auto fraction = percent / 100.0;
    while (wholePercent(fraction) < percent) {
        fraction = std::nextafter(fraction, std::numeric_limits<double>::infinity());
    }
    return fraction;
}

} // namespace nocta
