#pragma once

#include <cstdint>

namespace nocta {

// What Nocta and its guardian say to each other over a stream socket, which the guardian finds as
// its standard input. Both run on one machine, so numbers are in its own byte order.
//
// Nocta sends a `GuardianHello`, which the guardian answers with one `GuardianAnswer`. Then it
// sends a `GuardedRamp` for each CRTC, the three channels following as 3 × size 16-bit levels: red,
// green, blue. When the socket closes, Nocta has died, and the guardian gives the ramps back.
// A Nocta that has done so itself kills its guardian.

struct GuardianHello {
    std::uint32_t window; ///< lives as long as the server serves Nocta's gamma requests
};

struct GuardedRamp {
    std::uint32_t crtc;
    std::uint32_t size;
};

enum class GuardianAnswer : char {
    ready = 'r',   ///< no other guardian is at work: the ramps are as the factory left them
    refused = 'b', ///< another Nocta controls this display
};

/// The selection that a guardian owns while it works.
inline constexpr char guardianSelection[] = "_NOCTA_GUARDIAN";

/// No CRTC has a larger ramp than RandR's 16-bit size can tell.
inline constexpr std::uint32_t largestRamp = 65535;

} // namespace nocta
