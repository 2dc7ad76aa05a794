#pragma once

#include <QRectF>
#include <QWidget>

class QPainter;

namespace nocta {

/// The space that a control leaves around its shape for the ring.
inline constexpr int focusRingRoom = 3; // points

/// Paints a ring around the shape of a control if it has the focus and the user has moved the focus
/// with the keyboard.
void paintFocusRing(QPainter& painter, const QWidget& control, const QRectF& shape,
                    qreal cornerRadius);

} // namespace nocta
