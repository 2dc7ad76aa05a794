#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

class QPainter;

namespace nocta {

/// Whether the program's own set has a symbol of that name.
bool hasSymbol(const QString& name);

/// Draws a symbol of the program's own set in one colour, as large as fits an upright place and in
/// its middle. It begins at a whole pixel of the device and is as sharp as the device allows. Draws
/// nothing for a name that is not in the set.
void drawSymbol(QPainter& painter, const QRectF& place, const QString& name, const QColor& color);

} // namespace nocta
