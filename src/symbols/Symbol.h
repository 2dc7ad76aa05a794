#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

class QPainter;

namespace nocta {

/// Returns whether the program's symbol set has a symbol with this name.
bool hasSymbol(const QString& name);

/// Draws a symbol from the program's symbol set in one color, centered in `place` and as large as
/// possible. The painter must not be rotated. The symbol is aligned to device pixels to keep it
/// sharp. Draws nothing if the set has no symbol with this name.
void drawSymbol(QPainter& painter, const QRectF& place, const QString& name, const QColor& color);

} // namespace nocta
