#include "backends/linux/shell/SymbolIcon.h"

#include <QColor>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QSvgRenderer>

#include <array>

namespace nocta {

namespace {

constexpr std::array panelSizes = {16, 22, 24, 32, 48}; // pixels
constexpr qreal haloOpacity = 0.55;

QColor panelTextColor() {
    const auto followsPalette = qgetenv("XDG_CURRENT_DESKTOP").contains("KDE");
    return followsPalette ? QGuiApplication::palette().color(QPalette::WindowText)
                          : QColor(Qt::white);
}

QImage tinted(QImage mask, const QColor& color) {
    QPainter painter(&mask);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(mask.rect(), color);
    return mask;
}

QPixmap drawn(QSvgRenderer& symbol, int size, const QColor& color) {
    QImage mask(size, size, QImage::Format_ARGB32_Premultiplied);
    mask.fill(Qt::transparent);
    QPainter maskPainter(&mask);
    symbol.render(&maskPainter);
    maskPainter.end();

    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    const auto halo = tinted(mask, color.lightnessF() < 0.5 ? Qt::white : Qt::black);
    painter.setOpacity(haloOpacity);
    for (const auto& offset : {QPoint(-1, 0), QPoint(1, 0), QPoint(0, -1), QPoint(0, 1)}) {
        painter.drawImage(offset, halo);
    }
    painter.setOpacity(1);
    painter.drawImage(0, 0, tinted(mask, color));
    return pixmap;
}

} // namespace

QIcon symbolIcon(const QString& symbolName) {
    QSvgRenderer symbol(QStringLiteral(":/symbols/%1.svg").arg(symbolName));
    QIcon icon;
    if (symbol.isValid()) {
        const auto color = panelTextColor();
        for (const auto size : panelSizes) {
            icon.addPixmap(drawn(symbol, size, color));
        }
    }
    return icon;
}

} // namespace nocta
