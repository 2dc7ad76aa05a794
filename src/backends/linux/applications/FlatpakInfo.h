#pragma once

#include <filesystem>
#include <string>

namespace nocta {

/// The ID of the Flatpak application that has `root` as its root folder, such as `/proc/PID/root`
/// of a process; empty for a process outside such a sandbox. The application may control the file's
/// content, so its size is limited, and nothing waits for it.
std::string flatpakId(const std::filesystem::path& root);

} // namespace nocta
