#include "ui/controls/FooterButton.h"

#include "symbols/Symbol.h"
#include "ui/Colors.h"
#include "ui/controls/FocusRing.h"

#include <QFontInfo>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace nocta {

namespace {

constexpr int symbolSize = 18; // points
constexpr int gap = 2;
constexpr int horizontalPadding = 4;
constexpr int verticalPadding = 3;
constexpr qreal cornerRadius = 6;
constexpr qreal textScale = 10.0 / 13;
constexpr double hoverPart = 0.08;
constexpr double pressedPart = 0.16;
constexpr qreal disabledOpacity = 0.4;

QFont smallFont(const QFont& font) {
    auto small = font;
    small.setPointSizeF(QFontInfo(font).pointSizeF() * textScale);
    return small;
}

} // namespace

FooterButton::FooterButton(QString symbol, const QString& text)
    : Button(text), symbol_(std::move(symbol)) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
}

QSize FooterButton::sizeHint() const {
    const QFontMetrics metrics(smallFont(font()));
    return {std::max(symbolSize, metrics.horizontalAdvance(text())) + 2 * horizontalPadding,
            symbolSize + gap + metrics.height() + 2 * verticalPadding};
}

void FooterButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto shape =
        QRectF(rect()).adjusted(focusRingRoom, focusRingRoom, -focusRingRoom, -focusRingRoom);
    const auto window = palette().color(QPalette::Window);
    const auto ink = palette().color(QPalette::Active, QPalette::WindowText);
    if (isEnabled() && (underMouse() || isDown())) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(mixed(window, ink, isDown() ? pressedPart : hoverPart));
        painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
    }
    painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
    const QRectF place((width() - symbolSize) / 2.0, verticalPadding, symbolSize, symbolSize);
    drawSymbol(painter, place, symbol_, ink);
    painter.setFont(smallFont(font()));
    painter.setPen(ink);
    const auto below = rect().adjusted(0, verticalPadding + symbolSize + gap, 0, -verticalPadding);
    painter.drawText(below, Qt::AlignCenter, text());
    paintFocusRing(painter, *this, shape, cornerRadius);
}

} // namespace nocta
