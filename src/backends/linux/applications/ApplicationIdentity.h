#pragma once

#include "platform/Workspace.h"

#include <optional>
#include <string>

namespace nocta {

/// The properties by which a window identifies its application. A member is empty if the window
/// does not report it.
struct ApplicationIdentity {
    std::string flatpak;     ///< the ID of its Flatpak sandbox
    std::string desktopFile; ///< the ID of its desktop file, or the file's path
    std::string windowClass; ///< the class in WM_CLASS, without the instance
};

/// Returns the macOS bundle identifier of an application that has one, so that the application has
/// the same name on every desktop. Otherwise returns a name that distinguishes the application from
/// all others. Returns nothing if the window reports nothing.
std::optional<std::string> bundleIdentifierOf(const ApplicationIdentity& identity);

/// Compares only the identifiers if there are any, because two windows of one application may
/// differ in everything else.
bool isSameApplication(const std::optional<RunningApplication>& one,
                       const std::optional<RunningApplication>& other);

} // namespace nocta
