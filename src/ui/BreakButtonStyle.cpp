#include "ui/BreakButtonStyle.h"

#include <QPainter>
#include <QPixmap>

namespace nocta {

namespace {
constexpr int horizontalPadding = 24; // points
constexpr int verticalPadding = 12;
constexpr qreal cornerRadius = 8;
constexpr qreal focusGap = 3; // between the button and its focus ring
constexpr qreal focusWidth = 2;
constexpr qreal quietFill = 0.2; // opacity of a button that is not primary
constexpr qreal pressedOpacity = 0.8;

static_assert(focusGap + focusWidth == BreakButtonStyle::focusRoom);
} // namespace

QSize BreakButtonStyle::size(const QPushButton& button) const {
    const auto metrics = button.fontMetrics();
    return {metrics.horizontalAdvance(button.text()) + 2 * (horizontalPadding + focusRoom),
            metrics.height() + 2 * (verticalPadding + focusRoom)};
}

/// Paints the whole button opaque into a pixmap first, so that the label becomes translucent
/// together with its background.
void BreakButtonStyle::paint(QPushButton& button) const {
    QPixmap picture((QSizeF(button.size()) * button.devicePixelRatio()).toSize());
    picture.setDevicePixelRatio(button.devicePixelRatio());
    picture.fill(Qt::transparent);
    QPainter inside(&picture);
    paintOpaque(inside, button);
    inside.end();
    QPainter painter(&button);
    painter.setOpacity(button.isDown() ? pressedOpacity : 1);
    painter.drawPixmap(0, 0, picture);
}

void BreakButtonStyle::paintOpaque(QPainter& painter, const QPushButton& button) const {
    painter.setRenderHint(QPainter::Antialiasing);
    const auto body = QRectF(button.rect()).adjusted(focusRoom, focusRoom, -focusRoom, -focusRoom);
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
