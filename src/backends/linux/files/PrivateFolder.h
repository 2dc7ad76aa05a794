#pragma once

#include <filesystem>
#include <system_error>

namespace nocta {

/// Makes a folder, and what is missing above it, for this user alone: with mode 0700 whatever the
/// umask. What is already there stays as it is.
std::error_code createPrivateFolders(const std::filesystem::path& folder);

/// Whether a folder belongs to this user and nobody else can change what is in it.
bool isPrivateFolder(const std::filesystem::path& folder);

} // namespace nocta
