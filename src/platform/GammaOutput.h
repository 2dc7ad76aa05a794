#pragma once

#include "platform/Displays.h"

#include <span>

namespace nocta {

/// The color transfer tables of the displays. The factory tables must come back however the process
/// dies. If the operating system does not restore them, the backend has to.
///
///     const std::vector<float> half = {0.0F, 0.5F};
///     gammaOutput.setDisplayTransferByTable(display, half, half, half); // dims to 50 %
///     gammaOutput.displayRestoreColorSyncSettings();
class GammaOutput {
public:
    virtual ~GammaOutput() = default;

    /// Whether tables can be set in this session at all.
    virtual bool isAvailable() const = 0;

    /// Sets a display's tables: three lists of equal length, output levels in 0.0–1.0 for evenly
    /// spaced input levels. The status covers only errors that are known at once, because the
    /// display gets the tables at the end of the run-loop turn. Stands for
    /// CGSetDisplayTransferByTable.
    virtual Status setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                             std::span<const float> green,
                                             std::span<const float> blue) = 0;

    /// Restores the factory tables of every display before it returns. Stands for
    /// CGDisplayRestoreColorSyncSettings.
    virtual void displayRestoreColorSyncSettings() = 0;
};

} // namespace nocta
