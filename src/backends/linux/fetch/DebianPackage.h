#pragma once

#include "platform/UpdateSource.h"

#include <optional>
#include <span>

namespace nocta {

/// Reads the name, the version and the architecture from the control data of a Debian package.
/// Returns nothing if the bytes are not such a package, or if a value is missing or longer than
/// `maxFeedValueSize`.
std::optional<Package> readDebianPackage(std::span<const unsigned char> bytes);

} // namespace nocta
