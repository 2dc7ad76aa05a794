#pragma once

#include <cstdint>

namespace nocta {

/// A fraction as a whole percentage, truncated: 0.755 is 75.
std::int64_t wholePercent(double fraction);

/// The smallest fraction that `wholePercent` turns into `percent`. For 29 it is slightly more than
/// 0.29, because the double nearest to 0.29 gives 28.
double fractionOfPercent(int percent);

} // namespace nocta
