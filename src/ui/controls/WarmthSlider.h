#pragma once

#include "settings/Setting.h"
#include "ui/controls/TrackSlider.h"

namespace nocta {

/// A slider over a warmth of 0.0–1.0, on a track in the colours that the screen's white takes.
class WarmthSlider final : public TrackSlider {
public:
    WarmthSlider(const QString& name, Setting<double>& value);

protected:
    void paintTrack(QPainter& painter, const QRectF& track, qreal knob) const override;
};

} // namespace nocta
