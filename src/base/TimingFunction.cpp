#include "base/TimingFunction.h"

namespace nocta {

namespace {

/// One coordinate of a cubic Bézier curve from 0 to 1.
double bezier(double first, double second, double parameter) {
    const auto rest = 1 - parameter;
    return 3 * rest * rest * parameter * first + 3 * rest * parameter * parameter * second +
           parameter * parameter * parameter;
}

} // namespace

double eased(TimingFunction function, double time) {
    const auto secondX = function == TimingFunction::easeIn ? 1.0 : 0.58;
    // Time increases with the curve's parameter, so bisection finds the parameter for a given time.
    double low = 0;
    double high = 1;
    for (int i = 0; i < 40; ++i) {
        const auto middle = (low + high) / 2;
        (bezier(0.42, secondX, middle) < time ? low : high) = middle;
    }
    return bezier(0, 1, high);
}

} // namespace nocta
