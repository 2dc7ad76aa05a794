#include "ui/controls/SymbolTabBar.h"

#include "symbols/Symbol.h"
#include "ui/Colors.h"
#include "ui/controls/FocusRing.h"

#include <QPainter>

#include <algorithm>

namespace nocta {

namespace {
constexpr int symbolSize = 24; // points
constexpr int gap = 4;
constexpr int horizontalPadding = 16;
constexpr int verticalPadding = 8;
constexpr qreal cornerRadius = 8;
} // namespace

SymbolTabBar::SymbolTabBar() {
    setExpanding(false);
    setDrawBase(false);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideNone);
    setFocusPolicy(Qt::StrongFocus);
}

void SymbolTabBar::addTab(const QString& title, const QString& symbol) {
    setTabData(QTabBar::addTab(title), symbol);
}

QSize SymbolTabBar::tabSizeHint(int index) const {
    const auto metrics = fontMetrics();
    return {std::max(symbolSize, metrics.horizontalAdvance(tabText(index))) + 2 * horizontalPadding,
            symbolSize + gap + metrics.height() + 2 * verticalPadding};
}

void SymbolTabBar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto text = palette().color(QPalette::WindowText);
    for (int index = 0; index < count(); ++index) {
        const auto shape =
            QRectF(tabRect(index))
                .adjusted(focusRingRoom, focusRingRoom, -focusRingRoom, -focusRingRoom);
        const auto isChosen = index == currentIndex();
        if (isChosen) {
            painter.setPen(QPen(hairlineColor(palette()), 1));
            painter.setBrush(panelColor(palette()));
            painter.drawRoundedRect(shape.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius,
                                    cornerRadius);
        }
        const QRectF place(shape.center().x() - symbolSize / 2.0,
                           tabRect(index).top() + verticalPadding, symbolSize, symbolSize);
        drawSymbol(painter, place, tabData(index).toString(),
                   isChosen ? accentColor(palette()) : text);
        painter.setPen(text);
        painter.drawText(
            tabRect(index).adjusted(0, verticalPadding + symbolSize + gap, 0, -verticalPadding),
            Qt::AlignCenter, tabText(index));
        if (isChosen) {
            paintFocusRing(painter, *this, shape, cornerRadius);
        }
    }
}

} // namespace nocta
