#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

class QPainter;

namespace nocta {

/// Draws a symbol of the program's own set in one colour. Draws nothing for a name that is not in
/// the set.
void drawSymbol(QPainter& painter, const QRectF& place, const QString& name, const QColor& color);

} // namespace nocta
