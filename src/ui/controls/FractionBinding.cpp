#include "ui/controls/FractionBinding.h"

#include "ui/Binding.h"
#include "ui/Percent.h"

#include <QSignalBlocker>

#include <algorithm>
#include <cstdint>

namespace nocta {

void bindFraction(QSlider& slider, Setting<double>& fraction) {
    bind(
        slider, fraction,
        [&slider, &fraction](double value) {
            QSignalBlocker const quiet(slider); // showing a value must not write the setting
            const FaultContext context({fraction.origin()});
            const auto percent = wholePercent(value);
            slider.setValue(static_cast<int>(
                std::clamp<std::int64_t>(percent, slider.minimum(), slider.maximum())));
        },
        &QSlider::valueChanged,
        [&fraction](int percent) { fraction.set(fractionOfPercent(percent)); });
}

} // namespace nocta
