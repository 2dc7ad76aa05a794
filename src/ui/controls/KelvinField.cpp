#include "ui/controls/KelvinField.h"

#include "ui/Binding.h"
#include "ui/Descriptions.h"
#include "ui/Text.h"

#include <QSignalBlocker>
#include <QWheelEvent>

#include <algorithm>

namespace nocta {

namespace {
constexpr int lowest = 1000; // kelvin
constexpr int highest = 10000;
constexpr int step = 100;
} // namespace

KelvinField::KelvinField(const QString& name, Setting<std::int64_t>& setting) {
    setAccessibleName(name);
    setSuffix(Text::tr(" K"));
    setSingleStep(step);
    setCorrectionMode(QAbstractSpinBox::CorrectToNearestValue);
    setKeyboardTracking(false); // ignore the number while the user is typing it
    bind(
        *this, setting,
        [this](std::int64_t kelvin) {
            QSignalBlocker const quiet(this); // showing a value must not write the setting
            const auto shown = countOf(kelvin);
            setRange(std::min(lowest, shown), std::max(highest, shown));
            setValue(shown);
        },
        &QSpinBox::valueChanged, [&setting](int kelvin) { setting.set(kelvin); });
}

void KelvinField::wheelEvent(QWheelEvent* event) {
    if (hasFocus()) {
        QSpinBox::wheelEvent(event);
    } else {
        event->ignore();
    }
}

} // namespace nocta
