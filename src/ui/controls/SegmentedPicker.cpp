#include "ui/controls/SegmentedPicker.h"

#include "symbols/Symbol.h"
#include "ui/Colors.h"
#include "ui/controls/FocusRing.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QRadioButton>

namespace nocta {

namespace {

constexpr qreal cornerRadius = 6; // points
constexpr int horizontalPadding = 8;
constexpr int verticalPadding = 4;
constexpr int symbolSize = 18;
constexpr int symbolPadding = 16;
constexpr double troughPart = 0.1;

class Segment final : public QRadioButton {
public:
    explicit Segment(const SegmentLook& look)
        : QRadioButton(look.symbol.isEmpty() ? look.text : QString()), symbol_(look.symbol) {
        setAccessibleName(look.text);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        // Tab moves to the selected segment, and the arrow keys to the other segments.
        setFocusPolicy(Qt::ClickFocus);
        connect(this, &QAbstractButton::toggled, this,
                [this](bool on) { setFocusPolicy(on ? Qt::StrongFocus : Qt::ClickFocus); });
        if (!symbol_.isEmpty()) {
            setToolTip(look.text);
        }
    }

    QSize sizeHint() const override {
        const auto width = symbol_.isEmpty() ? fontMetrics().horizontalAdvance(text()) : symbolSize;
        const auto height = symbol_.isEmpty() ? fontMetrics().height() : symbolSize;
        const auto padding = symbol_.isEmpty() ? horizontalPadding : symbolPadding;
        return {width + 2 * (padding + focusRingRoom),
                height + 2 * (verticalPadding + focusRingRoom)};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }

    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const auto shape =
            QRectF(rect()).adjusted(focusRingRoom, focusRingRoom, -focusRingRoom, -focusRingRoom);
        if (isChecked()) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(accentColor(palette()));
            painter.drawRoundedRect(shape, cornerRadius, cornerRadius);
        }
        const auto ink =
            isChecked() ? textOnAccent(palette()) : palette().color(QPalette::WindowText);
        if (symbol_.isEmpty()) {
            painter.setPen(ink);
            painter.drawText(shape, Qt::AlignCenter, text());
        } else {
            QRectF place(0, 0, symbolSize, symbolSize);
            place.moveCenter(shape.center());
            drawSymbol(painter, place, symbol_, ink);
        }
        paintFocusRing(painter, *this, shape, cornerRadius);
    }

private:
    QString symbol_;
};

} // namespace

SegmentedPicker::SegmentedPicker(const QString& name, const std::vector<SegmentLook>& segments) {
    setAccessibleName(name);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(-focusRingRoom); // adjacent rings may overlap
    for (int index = 0; const auto& look : segments) {
        auto* const segment = new Segment(look);
        segments_.addButton(segment, index++);
        row->addWidget(segment);
    }
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void SegmentedPicker::choose(qsizetype index) {
    segments_.button(static_cast<int>(index))->setChecked(true);
}

void SegmentedPicker::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(shadeColor(palette(), troughPart));
    painter.drawRoundedRect(
        QRectF(rect()).adjusted(focusRingRoom, focusRingRoom, -focusRingRoom, -focusRingRoom),
        cornerRadius, cornerRadius);
}

} // namespace nocta
