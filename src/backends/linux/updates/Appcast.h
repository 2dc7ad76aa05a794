#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nocta {

/// One release of an appcast, as the feed says it: UTF-8, and nothing of it trusted.
struct AppcastItem {
    std::string version{};            ///< what releases are compared by
    std::string shortVersionString{}; ///< for people; the version where the feed has none
    std::string minimumSystemVersion{};
    std::string channel{}; ///< nothing for the one that everybody is on
    std::string os{};      ///< nothing for any
    std::string url{};
    std::string edSignature{};  ///< in Base64
    std::int64_t length = 0;    ///< of the file, in bytes; 0 where the feed has none
    std::string releaseNotes{}; ///< plain text
};

/// Either the releases in the order of the feed, or why they cannot be read, in one line.
struct Appcast {
    std::vector<AppcastItem> items{};
    std::optional<std::string> error{};
};

/// Reads RSS 2.0 with the `sparkle` namespace. Items without a version or an enclosure are passed
/// over; a document with a document type is refused, as entities are all that it could bring.
Appcast parseAppcast(std::string_view xml);

} // namespace nocta
