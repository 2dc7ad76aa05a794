#pragma once

#include <QSlider>

namespace nocta {

/// A horizontal slider over whole per cents with a knob on a track: the track's look is a
/// subclass's. A press anywhere on it takes the knob there; arrows move it by 1 %, page keys by
/// 10 %, and the wheel by 1 % a line.
class TrackSlider : public QSlider {
public:
    /// The name is what a screen reader calls it.
    explicit TrackSlider(const QString& name);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    /// `track` is all of it; the knob's centre is at `knob` on it.
    virtual void paintTrack(QPainter& painter, const QRectF& track, qreal knob) const = 0;

    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    qreal knobCenter() const;
    void moveTo(qreal x);

    qreal grip_ = 0; ///< where on the knob it was taken
};

} // namespace nocta
