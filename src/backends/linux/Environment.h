#pragma once

#include <cstdlib>
#include <string>

namespace nocta {

/// The value of an environment variable; empty if it is not set.
inline std::string environment(const char* name) {
    const auto* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

} // namespace nocta
