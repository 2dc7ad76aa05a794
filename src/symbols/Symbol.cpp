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

/// The place in pixels of the device. The size is rounded by itself, so that a symbol is equally
/// large wherever it stands.
QRect pixelsOf(const QPainter& painter, const QRectF& place) {
    const auto exact = painter.deviceTransform().mapRect(place);
    return {exact.topLeft().toPoint(), exact.size().toSize()};
}

} // namespace

bool hasSymbol(const QString& name) {
    return QFile::exists(fileOf(name));
}

// To read and draw a symbol takes less than a tenth of a millisecond at the size of a button, so
// nothing is kept.
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
    painter.drawImage(pixels.topLeft(), tinted); // one pixel of it to one of the device
    painter.restore();
}

} // namespace nocta
