#pragma once

#include <QSlider>

namespace nocta {

/// A horizontal slider that moves in steps of one percent. A subclass paints its knob and its
/// track. Pressing the mouse button anywhere on the slider moves the knob there. The arrow keys
/// move the knob by 1%, the page keys by 10%, and the wheel by 1% per line.
class TrackSlider : public QSlider {
public:
    /// `name` is for screen readers.
    explicit TrackSlider(const QString& name);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    /// Paints the track. `track` is the area of the whole track; `knob` is the x coordinate of the
    /// knob's center.
    virtual void paintTrack(QPainter& painter, const QRectF& track, qreal knob) const = 0;

    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    qreal knobCenter() const;
    void moveTo(qreal x);

    qreal grip_ = 0; ///< where the user grabbed the knob, relative to its center
};

} // namespace nocta
