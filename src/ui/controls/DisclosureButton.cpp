#include "ui/controls/DisclosureButton.h"

#include "symbols/Symbol.h"
#include "ui/Text.h"
#include "ui/controls/FocusRing.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace nocta {

namespace {
constexpr int symbolSize = 14; // points
constexpr int gap = 6;
constexpr int padding = 4;
constexpr qreal cornerRadius = 6;
} // namespace

DisclosureButton::DisclosureButton(const QString& text, QWidget& content) : content_(content) {
    setText(text);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setOpen(false);
    connect(this, &QAbstractButton::clicked, this, [this] { setOpen(!isOpen_); });
}

void DisclosureButton::setOpen(bool isOpen) {
    isOpen_ = isOpen;
    content_.setVisible(isOpen);
    setAccessibleDescription(isOpen ? Text::tr("Open") : Text::tr("Closed"));
    update();
}

QSize DisclosureButton::sizeHint() const {
    const auto metrics = fontMetrics();
    return {metrics.horizontalAdvance(text()) + gap + symbolSize + 2 * (padding + focusRingRoom),
            std::max(metrics.height(), symbolSize) + 2 * (padding + focusRingRoom)};
}

void DisclosureButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto ink = palette().color(QPalette::WindowText);
    constexpr auto inset = padding + focusRingRoom;
    const auto room = rect().adjusted(inset, 0, -inset, 0);
    painter.setPen(ink);
    const auto start = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft);
    painter.drawText(room, static_cast<int>(start | Qt::AlignVCenter), text());
    const auto place = QStyle::alignedRect(layoutDirection(), Qt::AlignRight | Qt::AlignVCenter,
                                           QSize(symbolSize, symbolSize), room);
    drawSymbol(painter, place,
               isOpen_ ? QStringLiteral("chevron.up") : QStringLiteral("chevron.down"), ink);
    paintFocusRing(
        painter, *this,
        QRectF(rect()).adjusted(focusRingRoom, focusRingRoom, -focusRingRoom, -focusRingRoom),
        cornerRadius);
}

} // namespace nocta
