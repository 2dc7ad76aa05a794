#pragma once

#include <QRectF>
#include <QWidget>

class QPainter;

namespace nocta {

/// The space that a control reserves around its shape for the ring.
inline constexpr int focusRingRoom = 3; // points

/// Paints a ring around the shape of a control if the control has focus and the user moved the
/// focus with the keyboard.
void paintFocusRing(QPainter& painter, const QWidget& control, const QRectF& shape,
                    qreal cornerRadius);

} // namespace nocta
