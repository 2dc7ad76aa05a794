#include "ui/controls/Switch.h"

#include "ui/Colors.h"
#include "ui/controls/FocusRing.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace nocta {

namespace {
constexpr int trackWidth = 34; // points, without the label
constexpr int trackHeight = 20;
constexpr int gap = 8; // between label and switch
constexpr qreal knobInset = 2;
constexpr double offPart = 0.45; // fraction of the text color in the track
constexpr qreal disabledOpacity = 0.4;
} // namespace

Switch::Switch(const QString& text) : QCheckBox(text) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
}

QSize Switch::sizeHint() const {
    const auto metrics = fontMetrics();
    const auto textWidth = text().isEmpty() ? 0 : metrics.horizontalAdvance(text()) + gap;
    return {textWidth + trackWidth + 2 * focusRingRoom,
            std::max(metrics.height(), trackHeight + 2 * focusRingRoom)};
}

void Switch::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
    painter.setPen(palette().color(QPalette::Active, QPalette::WindowText));
    const auto room = rect().adjusted(focusRingRoom, 0, -focusRingRoom, 0);
    const auto start = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft);
    painter.drawText(room, static_cast<int>(start | Qt::AlignVCenter) | Qt::TextShowMnemonic,
                     text());

    const QRectF track = QStyle::alignedRect(layoutDirection(), Qt::AlignRight | Qt::AlignVCenter,
                                             QSize(trackWidth, trackHeight), room);
    const auto radius = track.height() / 2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(isChecked() ? accentColor(palette()) : shadeColor(palette(), offPart));
    painter.drawRoundedRect(track, radius, radius);

    const auto knobSize = track.height() - 2 * knobInset;
    const auto isAtRight = isChecked() != isRightToLeft();
    const auto left = isAtRight ? track.right() - knobInset - knobSize : track.left() + knobInset;
    painter.setBrush(isDown() ? QColor(230, 230, 230) : QColor(Qt::white));
    painter.drawEllipse(QRectF(left, track.top() + knobInset, knobSize, knobSize));
    paintFocusRing(painter, *this, track, radius);
}

} // namespace nocta
