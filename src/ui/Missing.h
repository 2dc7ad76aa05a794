#pragma once

#include "app/SharedInstances.h"

#include <QString>

namespace nocta {

// If this desktop lacks what a control needs, the control still writes its setting, and its tool
// tip, which screen readers read too, says what is missing. These functions return that text; it is
// empty if nothing is missing.

QString missingForBrightness(SharedInstances& instances);
QString missingForGrayscale(SharedInstances& instances);
QString missingForLocation(SharedInstances& instances);
QString missingForUpdates(SharedInstances& instances);

} // namespace nocta
