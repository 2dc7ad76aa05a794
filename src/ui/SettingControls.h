#pragma once

#include "app/SharedInstances.h"
#include "ui/controls/Switch.h"
#include "ui/controls/WarmthSlider.h"

#include <QAbstractButton>
#include <QWidget>

namespace nocta {

// Controls that several views use, each bound to its setting. The caller owns them.

/// The name, the brightness as a whole percentage, and the slider below them.
QWidget* makeBrightnessField(SharedInstances& instances);

WarmthSlider* makeWarmthSlider(SharedInstances& instances);

/// Tests find the toggle by `identifier`.
Switch* makeToggle(const QString& text, const char* identifier, Setting<bool>& setting);

Switch* makeGrayscaleToggle(const QString& text, SharedInstances& instances);

Switch* makeLaunchAtLoginToggle(const QString& text, LaunchAtLoginService& service);

/// Makes the button check for updates.
void bindToUpdateCheck(QAbstractButton& button, SharedInstances& instances);

/// A row with a name and, at the other end, a fraction as a whole percentage.
QWidget* makeLevelHeading(const QString& name, const char* identifier, Setting<double>& setting);

} // namespace nocta
