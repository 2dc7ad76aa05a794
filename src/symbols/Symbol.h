#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

class QPainter;

namespace nocta {

/// Whether the program's own set has a symbol of that name.
bool hasSymbol(const QString& name);

/// Draws a symbol of the program's own set in one color, centered in `place` and as large as fits.
/// `place` must not be rotated. The symbol is aligned to device pixels, so that it is sharp. Draws
/// nothing for a name that is not in the set.
void drawSymbol(QPainter& painter, const QRectF& place, const QString& name, const QColor& color);

} // namespace nocta
