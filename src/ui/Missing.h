#pragma once

#include "app/SharedInstances.h"

#include <QWidget>

namespace nocta {

// Where this desktop lacks what a control is for, the control writes its setting all the same, and
// its tool tip says what is missing. These give an empty text where nothing is.

QString missingForBrightness(SharedInstances& instances);
QString missingForGrayscale(SharedInstances& instances);
QString missingForLocation(SharedInstances& instances);
QString missingForUpdates(SharedInstances& instances);

/// As a tool tip; an empty text takes it away.
void explain(QWidget& control, const QString& text);

} // namespace nocta
