#pragma once

#include "backends/linux/x11/X11Connection.h"
#include "platform/Displays.h"

namespace nocta {

/// Returns the part of a screen that panels leave free, in pixels. Reads what the windows of the
/// panels reserve in _NET_WM_STRUT_PARTIAL, and waits for the server.
Rect withoutPanels(X11Connection& connection, const Rect& screen);

} // namespace nocta
