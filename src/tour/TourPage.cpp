#include "tour/TourPage.h"

#include "tour/Plot.h"

#include <QFile>
#include <nlohmann/json.hpp>

#include <chrono>

namespace nocta {

namespace {

const auto head = QStringLiteral(R"(<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>A day with Nocta</title>
<style>
body { font: 16px/1.5 system-ui, sans-serif; margin: 2rem auto; max-width: 60rem; padding: 0 1rem;
       color: #222; background: #fbfaf8; }
h1, h2 { line-height: 1.2; }
time { color: #9a5c00; font-variant-numeric: tabular-nums; margin-right: .5em; }
img, svg { width: 100%; height: auto; border-radius: 6px; }
svg { background: #fff; font: 12px system-ui, sans-serif; }
table { border-collapse: collapse; } td { padding: .1rem 1rem .1rem 0; }
</style></head><body>
<h1>A day with Nocta</h1>
<p>The pictures show two displays as a user would see them: a laptop's built-in display on the left
and an external display on the right. Every picture includes the effect of the filter, the gamma
tables and the backlight at that moment. The windows are the program's own. The file
<a href="trace.jsonl">trace.jsonl</a> lists every call that the desktop received.</p>
)");

bool write(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
}

QString sceneSection(const TourScene& scene) {
    return QStringLiteral("<h2><time>%1</time>%2</h2>\n<p>%3</p>\n<img src=\"%4\" alt=\"%3\">\n")
        .arg(scene.time, scene.title.toHtmlEscaped(), scene.text.toHtmlEscaped(), scene.file);
}

QString plotSection(const QString& title, const std::vector<TourCurve>& curves, const PlotAxis& x,
                    const PlotAxis& y) {
    return QStringLiteral("<h2>%1</h2>\n").arg(title) + plot(title, curves, x, y);
}

QString breakTable(const Tour& tour) {
    auto table = QStringLiteral("<table>");
    for (const auto& [time, state] : tour.breakStates) {
        table += QStringLiteral("<tr><td><time>%1</time></td><td>%2</td></tr>").arg(time, state);
    }
    return table + QStringLiteral("</table>\n");
}

QString page(const Tour& tour) {
    auto html = head;
    for (const auto& scene : tour.scenes()) {
        html += sceneSection(scene);
    }
    html += plotSection("Backlight and dimming of the built-in display", tour.brightnessCurves,
                        {"brightness, %", 0, 100, 10}, {"fraction", 0, 1, 0.25});
    html += plotSection("Color temperature over the day", {tour.temperature}, {"hour", 9, 23, 1},
                        {"kelvin", 2000, 7000, 1000});
    html += plotSection("Blue gamma ramp at five moments", tour.ramps,
                        {"level sent to the display", 0, 255, 51}, {"level shown", 0, 1, 0.25});
    html +=
        QStringLiteral("<h2>States of the break timer</h2>\n"
                       "<p>Breaks were turned off for the evening. The reset at the end of the day "
                       "turned them on again.</p>\n") +
        breakTable(tour);
    return html + QStringLiteral("</body></html>\n");
}

QByteArray trace(const Tour& tour) {
    std::string lines;
    for (const auto& entry : tour.desktop.trace.entries()) {
        const auto time = std::chrono::floor<std::chrono::milliseconds>(entry.time);
        lines +=
            nlohmann::json{{"time", time.time_since_epoch().count()}, {"call", entry.call}}.dump() +
            "\n";
    }
    return QByteArray::fromStdString(lines);
}

} // namespace

bool writeTour(const Tour& tour) {
    return write(tour.folder() + QStringLiteral("/index.html"), page(tour).toUtf8()) &&
           write(tour.folder() + QStringLiteral("/trace.jsonl"), trace(tour));
}

} // namespace nocta
