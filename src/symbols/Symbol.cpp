#include "ui/Symbol.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

namespace nocta {

void drawSymbol(QPainter& painter, const QRectF& place, const QString& name, const QColor& color) {
    QSvgRenderer symbol(QStringLiteral(":/symbols/%1.svg").arg(name));
    if (!symbol.isValid()) {
        return;
    }
    const auto pixelsPerPoint = painter.deviceTransform().m11();
    QPixmap tinted((place.size() * pixelsPerPoint).toSize());
    tinted.fill(Qt::transparent);
    QPainter tint(&tinted);
    symbol.render(&tint);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.fillRect(tinted.rect(), color);
    tint.end();
    painter.drawPixmap(place, tinted, tinted.rect());
}

} // namespace nocta
