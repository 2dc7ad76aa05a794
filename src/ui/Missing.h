#pragma once

#include "app/SharedInstances.h"

#include <QString>

namespace nocta {

// If this desktop lacks something that a control needs, the control still writes its setting, and a
// note next to it says what is missing. These functions return the text of the note, which is empty
// if nothing is missing.

QString missingForBrightness(SharedInstances& instances);
QString missingForWarmth(SharedInstances& instances);
QString missingForGrayscale(SharedInstances& instances);
QString missingForLocation(SharedInstances& instances);
QString missingForUpdates(SharedInstances& instances);
QString missingForFeedback(SharedInstances& instances);

/// Returns a note about how the displays are warmed; empty if they are warmed as usual.
QString noteOnWarmth(SharedInstances& instances);

/// Returns a note about why the location is not used although it is enabled; empty if it is used.
QString noteOnLocation(SharedInstances& instances);

} // namespace nocta
