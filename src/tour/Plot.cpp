#include "tour/Plot.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace nocta {

namespace {

constexpr double width = 640; // of the plot area, in SVG units
constexpr double height = 240;
constexpr double left = 64;
constexpr double top = 16;
constexpr double bottom = 56;
constexpr double right = 16;
constexpr double legendStep = 132;

constexpr std::array colors = {"#c47608", "#4a6fb5", "#3b8557", "#9a4c8f", "#555555"};

QString number(double value) {
    return QString::number(value, 'g', 5);
}

double placeOn(const PlotAxis& axis, double value) {
    return (value - axis.least) / (axis.most - axis.least);
}

std::vector<double> marksOf(const PlotAxis& axis) {
    std::vector<double> marks(
        static_cast<std::size_t>(std::lround((axis.most - axis.least) / axis.step)) + 1);
    for (std::size_t i = 0; i < marks.size(); ++i) {
        marks[i] = axis.least + axis.step * static_cast<double>(i);
    }
    return marks;
}

QString line(double x1, double y1, double x2, double y2) {
    return QStringLiteral("<line x1='%1' y1='%2' x2='%3' y2='%4' stroke='#ddd'/>")
        .arg(number(x1), number(y1), number(x2), number(y2));
}

QString label(double x, double y, const char* anchor, const QString& text) {
    return QStringLiteral("<text x='%1' y='%2' text-anchor='%3'>%4</text>")
        .arg(number(x), number(y), QLatin1String(anchor), text.toHtmlEscaped());
}

} // namespace

QString plot(const QString& title, const std::vector<TourCurve>& curves, const PlotAxis& x,
             const PlotAxis& y) {
    auto svg = QStringLiteral("<svg viewBox='0 0 %1 %2' role='img' aria-label=\"%3\">")
                   .arg(number(left + width + right), number(top + height + bottom),
                        title.toHtmlEscaped());
    for (const auto mark : marksOf(x)) {
        const auto place = left + width * placeOn(x, mark);
        svg += line(place, top, place, top + height) +
               label(place, top + height + 16, "middle", number(mark));
    }
    for (const auto mark : marksOf(y)) {
        const auto place = top + height * (1 - placeOn(y, mark));
        svg += line(left, place, left + width, place) +
               label(left - 6, place + 4, "end", number(mark));
    }
    svg += label(left + width, top + height + 34, "end", x.name) + label(left, 11, "start", y.name);
    for (std::size_t i = 0; i < curves.size(); ++i) {
        const auto* const color = colors.at(i % colors.size());
        QString points;
        for (const auto& [pointX, pointY] : curves[i].points) {
            points += QStringLiteral("%1,%2 ").arg(number(left + width * placeOn(x, pointX)),
                                                   number(top + height * (1 - placeOn(y, pointY))));
        }
        svg += QStringLiteral("<polyline fill='none' stroke='%1' stroke-width='2' points='%2'/>")
                   .arg(QLatin1String(color), points.trimmed());
        const auto place = left + legendStep * static_cast<double>(i);
        svg += QStringLiteral("<rect x='%1' y='%2' width='12' height='4' fill='%3'/>")
                   .arg(number(place), number(top + height + 44), QLatin1String(color)) +
               label(place + 16, top + height + 50, "start", curves[i].name);
    }
    return svg + QStringLiteral("</svg>\n");
}

} // namespace nocta
