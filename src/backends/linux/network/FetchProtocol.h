#pragma once

#include <cstdint>

namespace nocta {

// The messages between Nocta and nocta-fetch. Nocta sends one JSON object (url, method, headers as
// an array of lines, body, certificates) and closes its side. The helper answers with messages: the
// status once the response header is complete, the body in pieces, and `end`. The helper may send
// an error at any time; an error is always the last message.

enum class FetchKind : std::uint32_t { status, data, end, error };

enum class FetchError : std::uint32_t {
    broken,         ///< the connection was lost, or any other error
    serverNotFound, ///< the host name is unknown
    notReachable,
    notTrusted,
    redirected, ///< too many times
    notEncrypted,
    count
};

struct FetchMessage {
    FetchKind kind{};
    std::uint32_t value = 0; ///< the status, the size of the data that follow, or a FetchError
};

inline constexpr std::uint32_t maxFetchPieceSize = 1 << 16; ///< bytes

} // namespace nocta
