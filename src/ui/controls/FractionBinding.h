#pragma once

#include "settings/Setting.h"

#include <QSlider>

namespace nocta {

/// Binds a slider over whole per cents to a fraction, with a write for each step. A fraction
/// between two steps or outside of the slider's range is shown at the nearest place below, and
/// stays what it is until the user moves the slider.
void bindFraction(QSlider& slider, Setting<double>& fraction);

} // namespace nocta
