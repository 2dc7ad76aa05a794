#pragma once

#include <cstdio>
#include <cstdlib>

namespace nocta {

/// Aborts if an expectation is not met. The fuzzer records that like any other crash.
inline void expect(bool isMet, const char* expectation) {
    if (!isMet) {
        std::fprintf(stderr, "expectation not met: %s\n", expectation);
        std::abort();
    }
}

} // namespace nocta
