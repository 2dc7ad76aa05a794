#include "ui/controls/FocusRing.h"

#include "ui/Colors.h"

#include <QPainter>

namespace nocta {

namespace {
constexpr qreal ringWidth = 2; // points
}

void paintFocusRing(QPainter& painter, const QWidget& control, const QRectF& shape,
                    qreal cornerRadius) {
    if (!control.hasFocus() || !control.window()->testAttribute(Qt::WA_KeyboardFocusChange)) {
        return;
    }
    constexpr auto reach = focusRingRoom - ringWidth / 2;
    painter.setPen(QPen(accentColor(control.palette()), ringWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(shape.adjusted(-reach, -reach, reach, reach), cornerRadius + reach,
                            cornerRadius + reach);
}

} // namespace nocta
