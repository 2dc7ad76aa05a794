#include "ui/controls/SymbolView.h"

#include "symbols/Symbol.h"
#include "ui/Colors.h"

#include <QPainter>

namespace nocta {

SymbolView::SymbolView(const QString& name, int size, SymbolColor color)
    : name_(name), color_(color) {
    setFixedSize(size, size);
}

void SymbolView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    drawSymbol(painter, rect(), name_,
               color_ == SymbolColor::accent ? accentColor(palette())
                                             : palette().color(QPalette::WindowText));
}

} // namespace nocta
