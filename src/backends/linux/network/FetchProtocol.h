#pragma once

#include <cstdint>

namespace nocta {

// What the program and nocta-fetch say to each other. The program sends one JSON object (url,
// method, headers as an array of lines, body, certificates) and ends its side. The helper answers
// with messages: the status once the head of the response is there, the body in pieces, and `end`;
// or an error at any time, which is the last.

enum class FetchKind : std::uint32_t { status, data, end, error };

enum class FetchError : std::uint32_t {
    broken,         ///< or anything that has no name here
    serverNotFound, ///< nobody has that name
    notReachable,
    notTrusted,
    redirected, ///< without end
    notEncrypted,
    count
};

struct FetchMessage {
    FetchKind kind{};
    std::uint32_t value = 0; ///< the status, the size of the data that follow, or a FetchError
};

inline constexpr std::uint32_t maxFetchPieceSize = 1 << 16; ///< bytes

} // namespace nocta
