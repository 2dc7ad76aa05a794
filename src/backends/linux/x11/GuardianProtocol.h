#pragma once

#include <cstdint>

namespace nocta {

// What Nocta and its guardian say to each other over a stream socket, which the guardian finds as
// its standard input. Both run on one machine, so numbers are in its own byte order.
//
// Nocta sends a `GuardianHello`, and the guardian answers with one `GuardianAnswer`: at once where
// no other is at work, else as soon as it knows what becomes of that one. When the socket closes,
// Nocta has died or could not give the screen back, and the guardian does. A Nocta that has done it
// kills its guardian.

struct GuardianHello {
    std::uint32_t window; ///< lives as long as the server serves Nocta's requests
};

enum class GuardianAnswer : char {
    ready = 'y',   ///< no other guardian is at work
    refused = 'n', ///< another Nocta controls this display
};

/// The selection that a guardian owns while it works. A guardian that wants it and finds another's
/// window owning it sends that window a client message of this type, with its own window as the
/// first number. A guardian whose Nocta lives sends one back, with no window in it. One that does
/// not answer in time is frozen and loses the selection; it must not write anything then.
inline constexpr char guardianSelection[] = "_NOCTA_GUARDIAN";

} // namespace nocta
