#pragma once

#include <optional>
#include <string>

namespace nocta {

/// What a window reports about its application; empty if it does not.
struct ApplicationIdentity {
    std::string flatpak;     ///< the ID of its Flatpak sandbox
    std::string desktopFile; ///< the ID of its desktop file, or the file's path
    std::string windowClass; ///< the class in WM_CLASS, without the instance
};

/// The bundle identifier of an application that has one on macOS, so that the same application has
/// the same name everywhere. Otherwise a name of its own that distinguishes it from other
/// applications. Nothing if the window reports nothing.
std::optional<std::string> bundleIdentifierOf(const ApplicationIdentity& identity);

} // namespace nocta
