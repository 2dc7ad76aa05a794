#pragma once

#include "platform/UpdateSource.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace nocta {

// The messages between Nocta and nocta-fetch. Nocta sends one JSON object, the request, and closes
// its side. The helper answers with JSON objects, one per line. `job` in the request is one of:
//
// - send: posts `body` to `url`, or requests `url` if the body is null. The answer is FetchStatus.
// - feed: reads the appcast at `url`. The answers are items, then FetchEnd.
// - download: saves the file at `url` as the new `file` in `folder`. The answers are FetchProgress,
//   then FetchEnd. The file has exactly `length` bytes.
// - verify: checks the `signature` of `file` in `folder` with `key`, and then reads the package's
//   control data. It does not use the network. The answer is the package, without its path.
//
// `headers` is an array of HTTP header lines; `certificates` a file of trusted authorities that
// replaces the system's, or empty. The answer FetchFailure ends any job.

enum class FetchError : std::uint32_t {
    broken,         ///< the connection was lost, or any other error
    serverNotFound, ///< the host name is unknown
    notReachable,
    notTrusted,
    redirected, ///< too many times
    notEncrypted,
    status, ///< not 200; the detail is the status
    feedTooLong,
    feedNotRss,
    feedHasDoctype,
    feedMalformed,
    fileTooShort,
    fileTooLong,
    fileNotSaved, ///< the detail is an errno
    notSigned,    ///< by the publisher
    notAPackage,
    timedOut,
    notStarted, ///< nocta-fetch itself
    count
};

struct FetchStatus {
    int code = 0; ///< of an HTTP response
    bool operator==(const FetchStatus&) const = default;
};
struct FetchProgress {
    std::int64_t received = 0; ///< in bytes
    bool operator==(const FetchProgress&) const = default;
};
struct FetchEnd {
    bool operator==(const FetchEnd&) const = default;
};
struct FetchFailure {
    FetchError error = FetchError::broken;
    int detail = 0;
    bool operator==(const FetchFailure&) const = default;
};

using FetchAnswer =
    std::variant<AppcastItem, Package, FetchProgress, FetchStatus, FetchEnd, FetchFailure>;

inline constexpr std::size_t maxFetchLineSize = 1 << 16;    ///< bytes, with the line break
inline constexpr std::size_t maxFetchAnswersSize = 1 << 20; ///< bytes of all lines of a job
inline constexpr std::size_t maxReleaseNotesSize = 1 << 14; ///< bytes of UTF-8
inline constexpr std::size_t maxVersionSize = 64;           ///< bytes
inline constexpr std::size_t maxFeedValueSize = 2048;       ///< bytes; URLs are the longest values

/// Whether a text is a version: up to `maxVersionSize` letters, digits and the characters . + ~ -
/// of package versions, not empty. A version can be part of a file name.
bool isVersion(std::string_view text);

/// Returns the answer as one line, with the line break. Invalid UTF-8 is replaced.
std::string serialized(const FetchAnswer& answer);

/// Parses a line without its line break. Returns nothing unless the line is exactly an answer whose
/// values are within their limits.
std::optional<FetchAnswer> parseFetchAnswer(std::string_view line);

} // namespace nocta
