#pragma once

#include "settings/Setting.h"
#include "ui/controls/TrackSlider.h"

namespace nocta {

/// A slider for a warmth of 0.0–1.0. Its track shows how white looks on screen at each value.
class WarmthSlider final : public TrackSlider {
public:
    WarmthSlider(const QString& name, Setting<double>& value);

protected:
    void paintTrack(QPainter& painter, const QRectF& track, qreal knob) const override;
};

} // namespace nocta
