#pragma once

#include <filesystem>
#include <string>

namespace nocta {

/// The X server that a display's name means, in one spelling: that of the screen does not count,
/// and `:0`, `unix:0` and `:0.1` are the same server.
std::string xServerName(const std::string& display);

/// The socket of the Wayland compositor that a display's name means, relative to the user's runtime
/// folder unless it is a whole path.
std::filesystem::path waylandSocket(const std::filesystem::path& runtimeFolder,
                                    const std::string& display);

} // namespace nocta
