#include "ui/controls/CustomSlider.h"

#include "ui/Colors.h"
#include "ui/Percent.h"
#include "ui/controls/FractionBinding.h"

#include <QPainter>

namespace nocta {

namespace {
constexpr double unfilledPart = 0.28;
}

CustomSlider::CustomSlider(const QString& name, Setting<double>& value, ClosedRange range,
                           Color accentColor)
    : TrackSlider(name), accentColor_(accentColor) {
    setRange(static_cast<int>(wholePercent(range.lower)),
             static_cast<int>(wholePercent(range.upper)));
    bindFraction(*this, value);
}

void CustomSlider::paintTrack(QPainter& painter, const QRectF& track, qreal knob) const {
    const auto radius = track.height() / 2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(shadeColor(palette(), unfilledPart));
    painter.drawRoundedRect(track, radius, radius);
    auto filled = track;
    if (isRightToLeft()) {
        filled.setLeft(knob);
    } else {
        filled.setRight(knob);
    }
    painter.setBrush(accentColor_(palette()));
    painter.drawRoundedRect(filled, radius, radius);
}

} // namespace nocta
