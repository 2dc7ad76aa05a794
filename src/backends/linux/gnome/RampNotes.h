#pragma once

#include "backends/linux/gamma/GammaRamp.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

namespace nocta {

/// The ramps that the CRTCs of GNOME's compositor had before Nocta wrote to them. They are kept in
/// a file while Nocta's own ramps are in effect, so that a later start finds them even if Nocta and
/// its helper are killed.
struct RampNotes {
    std::string run; ///< names the run of the compositor that the ramps belong to
    std::map<std::uint32_t, GammaRamp> ramps; ///< by CRTC
};

/// Returns empty notes if the file is missing. Ramps that are damaged are left out.
RampNotes readRampNotes(const std::filesystem::path& file);

/// Replaces the file as a whole. Returns false if it cannot be written.
bool writeRampNotes(const std::filesystem::path& file, const RampNotes& notes);

} // namespace nocta
