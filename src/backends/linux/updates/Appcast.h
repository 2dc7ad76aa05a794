#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nocta {

/// One release in an appcast, as described by the feed, in UTF-8. Its values are not trusted.
struct AppcastItem {
    std::string version{};            ///< used to compare releases
    std::string shortVersionString{}; ///< shown to users; `version` if the feed has none
    std::string minimumSystemVersion{};
    std::string channel{}; ///< empty for the default channel
    std::string os{};      ///< empty for any system
    std::string url{};
    std::string edSignature{};  ///< in Base64
    std::int64_t length = 0;    ///< the file's size in bytes; 0 if the feed has none
    std::string releaseNotes{}; ///< plain text
};

/// Either the releases in the order of the feed, or a one-line reason why the feed cannot be read.
struct Appcast {
    std::vector<AppcastItem> items{};
    std::optional<std::string> error{};
};

/// Reads RSS 2.0 with the `sparkle` namespace. Items without a version or an enclosure are skipped.
/// A document with a document type declaration is refused, because feeds need no entities.
Appcast parseAppcast(std::string_view xml);

} // namespace nocta
