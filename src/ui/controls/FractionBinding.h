#pragma once

#include "settings/Setting.h"

#include <QSlider>

namespace nocta {

/// Binds a slider in whole percent to a fraction and writes the fraction on every step. The slider
/// shows a fraction between two steps at the lower step, and a fraction outside its range at the
/// nearest end. The fraction does not change until the user moves the slider.
void bindFraction(QSlider& slider, Setting<double>& fraction);

} // namespace nocta
