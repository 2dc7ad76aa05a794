#pragma once

#include <compare>
#include <string_view>

namespace nocta {

/// Compares two versions. Numbers of any length are compared by value: 1.9 < 1.10. Missing parts at
/// the end are zero: 1.0 = 1. Letters and ~ mark a prerelease: 2.0~1 < 2.0b1 < 2.0rc1 < 2.0. Other
/// characters are only separators.
std::weak_ordering compareVersions(std::string_view a, std::string_view b);

} // namespace nocta
