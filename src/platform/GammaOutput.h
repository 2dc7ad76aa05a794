#pragma once

#include "platform/Displays.h"

#include <span>

namespace nocta {

/// The colour transfer tables of the displays. A desktop that does not give the factory tables
/// back by itself when the process dies, in whatever way, has to see to it in its backend.
class GammaOutput {
public:
    virtual ~GammaOutput() = default;

    /// Whether displays can be given tables in this session at all.
    virtual bool isAvailable() const = 0;

    /// Sets a display's tables: three lists of equal length, output levels in 0.0–1.0 for evenly
    /// spaced input levels. The status is what is known at once; the write reaches the display at
    /// the end of the run-loop turn. Stands for CGSetDisplayTransferByTable.
    virtual Status setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                             std::span<const float> green,
                                             std::span<const float> blue) = 0;

    /// Gives every display its factory tables back and returns when that has happened.
    /// Stands for CGDisplayRestoreColorSyncSettings.
    virtual void displayRestoreColorSyncSettings() = 0;
};

} // namespace nocta
