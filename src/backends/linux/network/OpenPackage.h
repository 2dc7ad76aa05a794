#pragma once

#include "base/Subscription.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace nocta {

/// Opens a package with the desktop's default program for it. The run loop calls `opened` with the
/// error, or with nothing once the program has accepted the package. Canceling the returned
/// subscription prevents the call.
Subscription openPackage(const std::filesystem::path& package,
                         std::function<void(const std::optional<std::string>& error)> opened);

} // namespace nocta
