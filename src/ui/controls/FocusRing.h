#pragma once

#include <QRectF>
#include <QWidget>

class QPainter;

namespace nocta {

/// What a control leaves free around its shape for the ring.
inline constexpr int focusRingRoom = 3; // points

/// A ring around the shape of a control that has the keyboard, once the keyboard has been used to
/// get there.
void paintFocusRing(QPainter& painter, const QWidget& control, const QRectF& shape,
                    qreal cornerRadius);

} // namespace nocta
