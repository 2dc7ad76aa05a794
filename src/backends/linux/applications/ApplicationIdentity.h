#pragma once

#include <optional>
#include <string>

namespace nocta {

/// What a window tells of the application that it belongs to; empty is what it does not tell.
struct ApplicationIdentity {
    std::string flatpak;     ///< the id of the sandbox that it runs in
    std::string desktopFile; ///< the id of its desktop file, or the file's path
    std::string windowClass; ///< the class in WM_CLASS, without the instance
};

/// The bundle identifier of an application that has one on another system, so that the same
/// application is known by the same name everywhere; else a name of its own, by which it can be
/// told from any other. None for an application that tells nothing.
std::optional<std::string> bundleIdentifierOf(const ApplicationIdentity& identity);

} // namespace nocta
