#pragma once

#include <cstdint>

namespace nocta {

/// A fraction as a whole percentage, truncated: 0.755 is 75.
std::int64_t wholePercent(double fraction);

/// The smallest fraction that shows as this whole percentage. It is 0.29 and a bit for 29, as the
/// double nearest to 0.29 shows as 28.
double fractionOfPercent(int percent);

} // namespace nocta
