#pragma once

#include "settings/Setting.h"

#include <QSlider>

namespace nocta {

/// Binds a slider in whole percent to a fraction and writes at each step. A fraction between two
/// steps is shown at the lower one, and one outside of the slider's range at the nearest end. It
/// does not change until the user moves the slider.
void bindFraction(QSlider& slider, Setting<double>& fraction);

} // namespace nocta
