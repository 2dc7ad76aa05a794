#pragma once

#include <cstdint>

namespace nocta {

/// Converts a fraction to a whole percentage, truncated: 0.755 gives 75.
std::int64_t wholePercent(double fraction);

/// Returns the smallest fraction for which `wholePercent` returns `percent`. For 29 that is
/// slightly more than 0.29, because `wholePercent` returns 28 for the double nearest to 0.29.
double fractionOfPercent(int percent);

} // namespace nocta
