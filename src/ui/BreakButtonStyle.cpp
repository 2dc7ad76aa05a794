#include "ui/BreakButtonStyle.h"

#include <QPainter>

namespace nocta {

namespace {
constexpr int horizontalPadding = 24; // points
constexpr int verticalPadding = 12;
constexpr qreal cornerRadius = 8;
constexpr qreal focusGap = 3; // between the button and the ring that shows its focus
constexpr qreal focusWidth = 2;
constexpr qreal quietFill = 0.2; // opacity of a button that is not primary
constexpr qreal pressedOpacity = 0.8;

constexpr int ringRoom = static_cast<int>(focusGap + focusWidth);
} // namespace

QSize BreakButtonStyle::size(const QPushButton& button) const {
    const auto metrics = button.fontMetrics();
    return {metrics.horizontalAdvance(button.text()) + 2 * (horizontalPadding + ringRoom),
            metrics.height() + 2 * (verticalPadding + ringRoom)};
}

void BreakButtonStyle::paint(QPushButton& button) const {
    QPainter painter(&button);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(button.isDown() ? pressedOpacity : 1);
    const auto body = QRectF(button.rect()).adjusted(ringRoom, ringRoom, -ringRoom, -ringRoom);
    auto fill = QColor(Qt::white);
    fill.setAlphaF(static_cast<float>(isPrimary ? 1 : quietFill));
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(body, cornerRadius, cornerRadius);

    painter.setPen(isPrimary ? Qt::black : Qt::white);
    painter.setFont(button.font());
    painter.drawText(body, Qt::AlignCenter, button.text());

    if (button.hasFocus()) {
        painter.setPen(QPen(Qt::white, focusWidth));
        painter.setBrush(Qt::NoBrush);
        const auto reach = focusGap + focusWidth / 2;
        painter.drawRoundedRect(body.adjusted(-reach, -reach, reach, reach), cornerRadius + reach,
                                cornerRadius + reach);
    }
}

BreakButton::BreakButton(const QString& text, BreakButtonStyle style)
    : Button(text), style_(style) {
    setFocusPolicy(Qt::StrongFocus);
}

void BreakButton::paintEvent(QPaintEvent* /*event*/) {
    style_.paint(*this);
}

} // namespace nocta
