#pragma once

#include <cstdint>

namespace nocta {

/// What a desktop's call answered: 0 is success, anything else a failure.
using Status = std::int32_t;
inline constexpr Status statusSuccess = 0;
inline constexpr Status statusFailure = -1;

} // namespace nocta
