#pragma once

#include <filesystem>
#include <string>

namespace nocta {

/// The name of the X server behind a display's name, in one spelling: the screen number is dropped,
/// and `:0`, `unix:0` and `:0.1` are the same server.
std::string xServerName(const std::string& display);

/// The socket of the Wayland compositor behind a display's name. A relative name is looked up in
/// the user's runtime folder.
std::filesystem::path waylandSocket(const std::filesystem::path& runtimeFolder,
                                    const std::string& display);

} // namespace nocta
