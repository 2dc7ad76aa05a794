#pragma once

#include "platform/UpdateSource.h"

#include <optional>
#include <string>
#include <string_view>

namespace nocta {

/// The system that updates must fit.
struct UpdateSystem {
    std::string version;      ///< of the C library
    std::string architecture; ///< as the package system names it, such as "amd64"
};

/// The upstream part of a package's version: without the epoch and the package's own revision.
std::string_view upstreamVersion(std::string_view packageVersion);

/// Whether the feed offers a release for this system to everybody.
bool isForThisSystem(const AppcastItem& item, const UpdateSystem& system);

// Each function returns a one-line reason to refuse a release, or nothing.

/// Checks the feed's description, before the file is downloaded.
std::optional<std::string> problemWith(const AppcastItem& item);

/// Checks the package's own description, which the publisher has signed. `item` is the release that
/// the user was offered, and `current` the version that is running.
std::optional<std::string> problemWith(const Package& package, const AppcastItem& item,
                                       std::string_view current, const UpdateSystem& system);

} // namespace nocta
