#pragma once

#include "backends/linux/bus/PortalSettings.h"

namespace nocta {

/// Gives the windows the font of GNOME's settings, as the desktop's portal reports it. For programs
/// that run without Qt's theme for GNOME. Until the font is known, and if the portal does not tell
/// one, the windows have Qt's font. This object lives as long as the application.
class GnomeFont final {
public:
    GnomeFont();

private:
    PortalSettings settings_;
};

} // namespace nocta
