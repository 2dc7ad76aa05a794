#include "ui/controls/WarmthSlider.h"

#include "color/ColorTemperatureService.h"
#include "display/GammaTables.h"
#include "ui/Colors.h"
#include "ui/controls/FractionBinding.h"

#include <QLinearGradient>
#include <QPainter>

namespace nocta {

namespace {

constexpr int wholeRange = 100; // percent
constexpr int stops = 16;

QColor whiteAt(double warmth) {
    const auto white = rgbMultipliers(temperatureOfWarmth(warmth));
    return QColor::fromRgbF(white.red, white.green, white.blue);
}

} // namespace

WarmthSlider::WarmthSlider(const QString& name, Setting<double>& value) : TrackSlider(name) {
    setRange(0, wholeRange);
    bindFraction(*this, value);
}

void WarmthSlider::paintTrack(QPainter& painter, const QRectF& track, qreal /*knob*/) const {
    const auto isMirrored = isRightToLeft();
    QLinearGradient whites(isMirrored ? track.topRight() : track.topLeft(),
                           isMirrored ? track.topLeft() : track.topRight());
    for (int i = 0; i <= stops; ++i) {
        const auto warmth = static_cast<double>(i) / stops;
        whites.setColorAt(warmth, whiteAt(warmth));
    }
    painter.setPen(QPen(hairlineColor(palette()), 1));
    painter.setBrush(whites);
    const auto radius = track.height() / 2;
    painter.drawRoundedRect(track, radius, radius);
}

} // namespace nocta
