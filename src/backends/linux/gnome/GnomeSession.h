#pragma once

#include "backends/linux/Environment.h"

#include <string>

namespace nocta {

/// Whether GNOME Shell runs this session, according to the session's list of desktops. Budgie lists
/// itself as GNOME but has its own shell.
inline bool isGnomeSession() {
    const auto desktops = ":" + environment("XDG_CURRENT_DESKTOP") + ":";
    return desktops.find(":GNOME:") != std::string::npos &&
           desktops.find(":Budgie:") == std::string::npos;
}

} // namespace nocta
