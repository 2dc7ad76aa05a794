#pragma once

#include <filesystem>
#include <system_error>

namespace nocta {

/// Creates a folder and its missing parents with mode 0700, regardless of the umask. Existing
/// folders stay as they are.
std::error_code createPrivateFolders(const std::filesystem::path& folder);

/// Whether a folder belongs to this user and no other user can change its contents.
bool isPrivateFolder(const std::filesystem::path& folder);

} // namespace nocta
