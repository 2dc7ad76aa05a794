#pragma once

#include <filesystem>
#include <string>

namespace nocta {

/// The name of the X server that a display name refers to, in a canonical form: the screen number
/// is dropped, and `:0`, `unix:0` and `:0.1` give the same name.
std::string xServerName(const std::string& display);

/// The socket of the Wayland compositor that a display name refers to. A relative name is looked up
/// in the user's runtime folder.
std::filesystem::path waylandSocket(const std::filesystem::path& runtimeFolder,
                                    const std::string& display);

} // namespace nocta
