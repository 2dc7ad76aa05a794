#pragma once

#include "tour/Tour.h"

#include <QString>

#include <vector>

namespace nocta {

struct PlotAxis {
    QString name;
    double least = 0;
    double most = 1;
    double step = 1; ///< between two ticks
};

/// Draws curves over two axes. Returns an SVG element with the label `title`.
QString plot(const QString& title, const std::vector<TourCurve>& curves, const PlotAxis& x,
             const PlotAxis& y);

} // namespace nocta
