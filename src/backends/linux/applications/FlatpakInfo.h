#pragma once

#include <filesystem>
#include <string>

namespace nocta {

/// Returns the ID of the Flatpak application whose root folder is `root`, for example a process's
/// `/proc/PID/root`. Returns an empty string for a process outside a Flatpak sandbox. The
/// application may control the file that contains the ID, so this reads a limited size and never
/// blocks.
std::string flatpakId(const std::filesystem::path& root);

} // namespace nocta
