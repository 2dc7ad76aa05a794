#include "ui/controls/SymbolView.h"

#include "symbols/Symbol.h"
#include "ui/Colors.h"

#include <QPainter>

#include <utility>

namespace nocta {

namespace {

QColor colorOf(SymbolColor color, const QPalette& palette) {
    switch (color) {
    case SymbolColor::accent:
        return accentColor(palette);
    case SymbolColor::white:
        return Qt::white;
    case SymbolColor::text:
        break;
    }
    return palette.color(QPalette::WindowText);
}

} // namespace

SymbolView::SymbolView(QString name, int size, SymbolColor color)
    : name_(std::move(name)), color_(color) {
    setFixedSize(size, size);
}

void SymbolView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    drawSymbol(painter, rect(), name_, colorOf(color_, palette()));
}

} // namespace nocta
