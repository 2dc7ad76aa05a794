#pragma once

#include "backends/linux/x11/X11Connection.h"
#include "platform/Workspace.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>

namespace nocta {

/// Finds the application that a window of an X11 session belongs to, by the window's properties and
/// by the process that created it.
class X11Applications {
public:
    /// `processes` is the folder where the kernel lists the processes of the system.
    X11Applications(X11Connection& connection, std::filesystem::path processes);

    /// Returns nothing if `window` is XCB_NONE, or if the window does not identify its application.
    /// Waits for the server.
    std::optional<RunningApplication> applicationOf(xcb_window_t window) const;

private:
    std::uint32_t processOf(xcb_window_t window) const;

    X11Connection& connection_;
    std::filesystem::path processes_;
    xcb_atom_t wmName_ = connection_.atom("_NET_WM_NAME");
    xcb_atom_t utf8String_ = connection_.atom("UTF8_STRING");
    /// The name of the desktop file; each toolkit uses a different property.
    std::array<xcb_atom_t, 3> desktopFile_ = {connection_.atom("_GTK_APPLICATION_ID"),
                                              connection_.atom("_KDE_NET_WM_DESKTOP_FILE"),
                                              connection_.atom("_BAMF_DESKTOP_FILE")};
    bool knowsProcesses_ = false; ///< the server can report which process created a window
};

} // namespace nocta
