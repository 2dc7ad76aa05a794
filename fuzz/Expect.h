#pragma once

#include <cstdio>
#include <cstdlib>

namespace nocta {

/// Aborts if a promise is broken. The fuzzer records that like any other crash.
inline void expect(bool holds, const char* promise) {
    if (!holds) {
        std::fprintf(stderr, "broken promise: %s\n", promise);
        std::abort();
    }
}

} // namespace nocta
