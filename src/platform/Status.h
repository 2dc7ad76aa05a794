#pragma once

#include <cstdint>

namespace nocta {

/// The result of a call to the desktop: 0 is success, anything else is a failure.
using Status = std::int32_t;
inline constexpr Status statusSuccess = 0;
inline constexpr Status statusFailure = -1;

} // namespace nocta
