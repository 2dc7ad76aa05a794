#include "backends/linux/shell/SymbolIcon.h"

#include "symbols/Symbol.h"

#include <QColor>
#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QPixmap>

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

QPixmap drawn(const QString& symbolName, int size, const QColor& color) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    const QColor halo = color.lightnessF() < 0.5 ? Qt::white : Qt::black;
    painter.setOpacity(haloOpacity);
    for (const auto& offset : {QPoint(-1, 0), QPoint(1, 0), QPoint(0, -1), QPoint(0, 1)}) {
        drawSymbol(painter, pixmap.rect().translated(offset), symbolName, halo);
    }
    painter.setOpacity(1);
    drawSymbol(painter, pixmap.rect(), symbolName, color);
    return pixmap;
}

} // namespace

QIcon symbolIcon(const QString& symbolName) {
    QIcon icon;
    if (hasSymbol(symbolName)) {
        const auto color = panelTextColor();
        for (const auto size : panelSizes) {
            icon.addPixmap(drawn(symbolName, size, color));
        }
    }
    return icon;
}

} // namespace nocta
