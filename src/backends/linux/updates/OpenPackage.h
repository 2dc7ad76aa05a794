#pragma once

#include "base/Subscription.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace nocta {

/// Opens a package with the program that the desktop has for such. `opened` is called from the run
/// loop with why that failed, or with nothing once it was handed over, unless what is returned has
/// gone.
Subscription openPackage(const std::filesystem::path& package,
                         std::function<void(const std::optional<std::string>& error)> opened);

} // namespace nocta
