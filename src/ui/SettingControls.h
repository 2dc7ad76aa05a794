#pragma once

#include "app/SharedInstances.h"
#include "ui/controls/Switch.h"
#include "ui/controls/WarmthSlider.h"

#include <QAbstractButton>
#include <QWidget>

namespace nocta {

// The controls that stand in more than one view, each bound to its setting. The caller owns them.

/// The name, the brightness as a whole percentage, and the slider below.
QWidget* makeBrightnessField(SharedInstances& instances);

WarmthSlider* makeWarmthSlider(SharedInstances& instances);

/// `identifier` is how a test finds it.
Switch* makeToggle(const QString& text, const char* identifier, Setting<bool>& setting);

Switch* makeGrayscaleToggle(const QString& text, SharedInstances& instances);

Switch* makeLaunchAtLoginToggle(const QString& text, LaunchAtLoginService& service);

/// What it does is to look for updates.
void bindToUpdateCheck(QAbstractButton& button, SharedInstances& instances);

/// A name and, at the other end of the row, a fraction as a whole percentage. For a layout.
QWidget* makeLevelHeading(const QString& name, const char* identifier, Setting<double>& setting);

} // namespace nocta
