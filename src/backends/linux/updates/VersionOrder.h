#pragma once

#include <compare>
#include <string_view>

namespace nocta {

/// Which of two versions is newer. Numbers count by their value, however long they are: 1.9 < 1.10.
/// What lacks at the end is zero: 1.0 = 1. Letters mark what comes before a release: 2.0b1 < 2.0rc1
/// < 2.0. Other characters only separate.
std::weak_ordering compareVersions(std::string_view a, std::string_view b);

} // namespace nocta
