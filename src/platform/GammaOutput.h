#pragma once

#include "platform/Displays.h"

#include <span>

namespace nocta {

/// How tables that give the channels different levels are shown.
enum class Warmth {
    byTables,     ///< the levels are shown as they are
    byNightLight, ///< the desktop's own night light shows a similar color
    none          ///< only the highest of the three levels is shown
};

/// The color transfer tables of the displays. The factory tables must be restored however the
/// process ends, even if it crashes. If the operating system does not restore them, the backend
/// must.
///
///     const std::vector<float> half = {0.0F, 0.5F};
///     gammaOutput.setDisplayTransferByTable(display, half, half, half); // dims to 50%
///     gammaOutput.displayRestoreColorSyncSettings();
class GammaOutput {
public:
    virtual ~GammaOutput() = default;

    /// Returns whether this session supports setting tables at all.
    virtual bool isAvailable() const = 0;

    virtual Warmth warmth() const { return Warmth::byTables; }

    /// Sets a display's tables: three lists of equal length, output levels in 0.0–1.0 for evenly
    /// spaced input levels. The status covers only errors that are known immediately, because the
    /// tables are sent to the display at the end of the run-loop turn. Corresponds to
    /// CGSetDisplayTransferByTable on macOS.
    virtual Status setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                             std::span<const float> green,
                                             std::span<const float> blue) = 0;

    /// Restores the factory tables of every display before it returns. Corresponds to
    /// CGDisplayRestoreColorSyncSettings on macOS.
    virtual void displayRestoreColorSyncSettings() = 0;
};

} // namespace nocta
