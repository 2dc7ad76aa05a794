#pragma once

#include <cstdint>

namespace nocta {

// What Nocta and its guardian say to each other over a stream socket, which the guardian finds as
// its standard input. Both run on one machine, so numbers are in its own byte order.
//
// Nocta sends a `GuardianHello`, and the guardian answers with one `GuardianAnswer`. When the
// socket closes, Nocta has died or could not give the screen back, and the guardian does. A Nocta
// that has done it kills its guardian.

struct GuardianHello {
    std::uint32_t window; ///< lives as long as the server serves Nocta's requests
};

enum class GuardianAnswer : char {
    ready = 'y',   ///< no other guardian is at work
    refused = 'n', ///< another Nocta controls this display
};

/// The selection that a guardian owns while it works.
inline constexpr char guardianSelection[] = "_NOCTA_GUARDIAN";

} // namespace nocta
