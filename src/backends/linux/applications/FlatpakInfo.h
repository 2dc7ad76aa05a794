#pragma once

#include <filesystem>
#include <string>

namespace nocta {

/// The id of the Flatpak application that sees `root` as the root of its files, as `/proc/PID/root`
/// is for a process; empty for what is not in such a sandbox. A file there is whatever the
/// application may have put there, so little of it is read and nothing is waited for.
std::string flatpakId(const std::filesystem::path& root);

} // namespace nocta
