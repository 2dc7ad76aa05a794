#pragma once

#include "settings/Setting.h"
#include "ui/controls/TrackSlider.h"

namespace nocta {

struct ClosedRange {
    double lower = 0;
    double upper = 1;
};

/// A slider for a fraction, filled up to its knob.
class CustomSlider final : public TrackSlider {
public:
    using Color = QColor (*)(const QPalette& palette);

    CustomSlider(const QString& name, Setting<double>& value, ClosedRange range, Color accentColor);

protected:
    void paintTrack(QPainter& painter, const QRectF& track, qreal knob) const override;

private:
    Color accentColor_;
};

} // namespace nocta
