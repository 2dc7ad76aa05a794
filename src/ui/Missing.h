#pragma once

#include "app/SharedInstances.h"

#include <QString>

namespace nocta {

// Where this desktop lacks what a control is for, the control writes its setting all the same, and
// its tool tip, which a screen reader reads too, says what is missing. These give an empty text
// where nothing is.

QString missingForBrightness(SharedInstances& instances);
QString missingForGrayscale(SharedInstances& instances);
QString missingForLocation(SharedInstances& instances);
QString missingForUpdates(SharedInstances& instances);

} // namespace nocta
