#include "ui/controls/TrackSlider.h"

#include "ui/Colors.h"
#include "ui/controls/FocusRing.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace nocta {

namespace {
constexpr qreal trackHeight = 6; // points
constexpr qreal knobSize = 18;
constexpr qreal reach = knobSize / 2 + focusRingRoom; // from the end of the slider to the knob
constexpr int least = 100;                            // the width at which 1% is 1 point
constexpr int pageStepSize = 10;                      // percent
constexpr qreal disabledOpacity = 0.4;
} // namespace

TrackSlider::TrackSlider(const QString& name) : QSlider(Qt::Horizontal) {
    setAccessibleName(name);
    setPageStep(pageStepSize);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize TrackSlider::sizeHint() const {
    return {least + static_cast<int>(2 * reach), static_cast<int>(2 * reach)};
}

qreal TrackSlider::knobCenter() const {
    const auto part = static_cast<qreal>(value() - minimum()) / std::max(1, maximum() - minimum());
    const auto along = isRightToLeft() ? 1 - part : part;
    return std::lerp(reach, width() - reach, along);
}

void TrackSlider::moveTo(qreal x) {
    const auto along = std::clamp((x - reach) / (width() - 2 * reach), 0.0, 1.0);
    const auto part = isRightToLeft() ? 1 - along : along;
    setSliderPosition(minimum() + qRound(part * (maximum() - minimum())));
}

void TrackSlider::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto middle = height() / 2.0;
    const QRectF track(focusRingRoom, middle - trackHeight / 2, width() - 2 * focusRingRoom,
                       trackHeight);
    const auto center = knobCenter();
    painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
    paintTrack(painter, track, center);
    painter.setOpacity(1);

    const QRectF knob(center - knobSize / 2, middle - knobSize / 2, knobSize, knobSize);
    painter.setPen(QPen(secondaryColor(palette()), 1));
    const auto white = isSliderDown() ? QColor(235, 235, 235) : QColor(Qt::white);
    painter.setBrush(
        isEnabled() ? white : mixed(palette().color(QPalette::Window), white, disabledOpacity));
    painter.drawEllipse(knob.adjusted(0.5, 0.5, -0.5, -0.5));
    paintFocusRing(painter, *this, knob, knobSize / 2);
}

void TrackSlider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    const auto offset = event->position().x() - knobCenter();
    grip_ = std::abs(offset) <= knobSize / 2 ? offset : 0;
    setSliderDown(true);
    moveTo(event->position().x() - grip_);
    update();
}

void TrackSlider::mouseMoveEvent(QMouseEvent* event) {
    if (isSliderDown()) {
        moveTo(event->position().x() - grip_);
    }
}

void TrackSlider::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        setSliderDown(false);
        update();
    }
}

} // namespace nocta
