#pragma once

#include "app/SharedInstances.h"
#include "ui/controls/Label.h"
#include "ui/controls/Switch.h"
#include "ui/controls/WarmthSlider.h"

#include <QAbstractButton>
#include <QWidget>

#include <vector>

namespace nocta {

// Functions that make the controls that several views use, each bound to its setting. The caller
// owns the controls.

/// Makes a note for the controls above it. It is hidden if the text is empty. Screen readers read
/// the text as the description of each control.
Label* makeNote(const QString& text, const std::vector<QWidget*>& controls);

/// Changes the text of a note that is already in a layout.
void setNote(Label& note, const QString& text, const std::vector<QWidget*>& controls);

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
