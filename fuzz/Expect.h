#pragma once

#include <cstdio>
#include <cstdlib>

namespace nocta {

/// Ends the run where a promise is broken, which the fuzzer takes for a find like any crash.
inline void expect(bool holds, const char* promise) {
    if (!holds) {
        std::fprintf(stderr, "broken promise: %s\n", promise);
        std::abort();
    }
}

} // namespace nocta
