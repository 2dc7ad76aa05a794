#include "ui/controls/ActionButton.h"

#include "ui/Colors.h"
#include "ui/controls/FocusRing.h"

#include <QPainter>

namespace nocta {

namespace {
constexpr int horizontalPadding = 16; // points
constexpr int verticalPadding = 6;
constexpr qreal cornerRadius = 6;
constexpr double fillPart = 0.08;
constexpr double pressedPart = 0.18;
constexpr qreal disabledOpacity = 0.4;
} // namespace

ActionButton::ActionButton(const QString& text, Rank rank) : Button(text), rank_(rank) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
}

QSize ActionButton::sizeHint() const {
    const auto metrics = fontMetrics();
    return {metrics.horizontalAdvance(text()) + 2 * (horizontalPadding + focusRingRoom),
            metrics.height() + 2 * (verticalPadding + focusRingRoom)};
}

void ActionButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
    const auto window = palette().color(QPalette::Window);
    const auto text = palette().color(QPalette::Active, QPalette::WindowText);
    const auto isProminent = rank_ == Rank::prominent;
    const auto fill = isProminent ? mixed(accentColor(palette()), text, isDown() ? fillPart : 0)
                                  : mixed(window, text, isDown() ? pressedPart : fillPart);
    const auto shape =
        QRectF(rect()).adjusted(focusRingRoom, focusRingRoom, -focusRingRoom, -focusRingRoom);
    painter.setPen(QPen(isProminent ? fill : edgeColor(palette()), 1));
    painter.setBrush(fill);
    painter.drawRoundedRect(shape.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
    painter.setPen(isProminent ? textOnAccent(palette()) : text);
    painter.drawText(shape, Qt::AlignCenter, this->text());
    paintFocusRing(painter, *this, shape, cornerRadius);
}

} // namespace nocta
