#pragma once

#include "app/SharedInstances.h"
#include "ui/controls/Switch.h"
#include "ui/controls/WarmthSlider.h"

#include <QAbstractButton>
#include <QWidget>

namespace nocta {

// Functions that make the controls that several views use, each bound to its setting. The caller
// owns the controls.

/// Makes a label and the brightness as a whole percentage, with the slider below them.
QWidget* makeBrightnessField(SharedInstances& instances);

WarmthSlider* makeWarmthSlider(SharedInstances& instances);

/// Tests find the toggle by `identifier`.
Switch* makeToggle(const QString& text, const char* identifier, Setting<bool>& setting);

Switch* makeGrayscaleToggle(const QString& text, SharedInstances& instances);

Switch* makeLaunchAtLoginToggle(const QString& text, LaunchAtLoginService& service);

/// Makes the button start a check for updates.
void bindToUpdateCheck(QAbstractButton& button, SharedInstances& instances);

/// Makes a row with a name at one end and a fraction as a whole percentage at the other end.
QWidget* makeLevelHeading(const QString& name, const char* identifier, Setting<double>& setting);

} // namespace nocta
