#pragma once

#include <cstdint>

namespace nocta {

// The messages between Nocta and its guardian, over a stream socket that the guardian gets as its
// standard input. Both run on one machine, so numbers are in native byte order.
//
// Nocta sends a `GuardianHello`, and the guardian answers with one `GuardianAnswer`: immediately if
// no other guardian is running, otherwise as soon as it is known whether the other guardian exits.
// When the socket closes, Nocta has died or could not give the screen back, so the guardian gives
// it back. Once Nocta has given the screen back, it kills its guardian.

struct GuardianHello {
    std::uint32_t window; ///< exists as long as the server still handles Nocta's requests
};

enum class GuardianAnswer : char {
    ready = 'y',   ///< no other guardian is running
    refused = 'n', ///< another Nocta controls this display
};

/// The selection that a guardian owns while it runs. If another guardian's window owns it, a new
/// guardian sends that window a client message of this type, with its own window as the first
/// number. A guardian whose Nocta is alive answers with the same message without a window. A
/// guardian that does not answer in time is frozen and loses the selection; after that it must not
/// write anything.
inline constexpr char guardianSelection[] = "_NOCTA_GUARDIAN";

} // namespace nocta
