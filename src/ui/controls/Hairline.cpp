#include "ui/controls/Hairline.h"

#include "ui/Colors.h"

#include <QPainter>

namespace nocta {

Hairline::Hairline() {
    setFixedHeight(1);
}

void Hairline::paintEvent(QPaintEvent* /*event*/) {
    QPainter(this).fillRect(rect(), hairlineColor(palette()));
}

} // namespace nocta
