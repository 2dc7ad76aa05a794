#include "tour/ApplicationWindow.h"

#include <QColor>
#include <QString>

#include <algorithm>
#include <array>

namespace nocta {

const RunningApplication colorsApplication{"com.example.colors", "Colors"};

namespace {

constexpr qreal titleBarHeight = 28;
constexpr qreal cornerRadius = 10;
constexpr qreal margin = 24;
constexpr qreal gap = 10;

constexpr std::array meetingApplications = {"us.zoom.xos", "com.apple.FaceTime"};

/// Sample text that shows whether text in a picture is readable.
constexpr auto page =
    "Meeting notes\n\nThe new version is ready for testing. The team reviewed the open tasks and "
    "assigned each of them to a developer. The documentation will be updated before the release, "
    "and the test results will be collected in a shared document. Please report any problems by "
    "the end of the week.\n\nThe next meeting is on Thursday at ten. The agenda includes the "
    "release date, the schedule for the next quarter, and the budget for new equipment.";

QRectF cell(const QRectF& area, int columns, int rows, int column, int row) {
    const auto width = (area.width() - gap * (columns - 1)) / columns;
    const auto height = (area.height() - gap * (rows - 1)) / rows;
    return {area.left() + column * (width + gap), area.top() + row * (height + gap), width, height};
}

void paintFaces(QPainter& painter, const QRectF& area) {
    constexpr std::array backgrounds = {QColor(94, 129, 172), QColor(163, 190, 140),
                                        QColor(208, 135, 112), QColor(180, 142, 173)};
    for (int i = 0; i < 4; ++i) {
        const auto tile = cell(area, 2, 2, i % 2, i / 2);
        const auto size = std::min(tile.width(), tile.height());
        painter.setBrush(backgrounds.at(static_cast<std::size_t>(i)));
        painter.drawRoundedRect(tile, cornerRadius, cornerRadius);
        painter.save();
        painter.setClipRect(tile);
        painter.setBrush(QColor(60, 50, 60));
        painter.drawEllipse(tile.center() + QPointF(0, size * 0.62), size * 0.42, size * 0.42);
        painter.setBrush(QColor(231, 190, 160));
        painter.drawEllipse(tile.center() + QPointF(0, size * 0.02), size * 0.19, size * 0.22);
        painter.restore();
    }
}

/// Paints twelve hues in four shades each, above a ramp of grays.
void paintChart(QPainter& painter, const QRectF& area) {
    constexpr int hues = 12;
    constexpr int shades = 4;
    for (int hue = 0; hue < hues; ++hue) {
        for (int shade = 0; shade < shades; ++shade) {
            painter.setBrush(QColor::fromHsl(hue * 360 / hues, 180, 70 + 40 * shade));
            painter.drawRoundedRect(cell(area, hues, shades + 1, hue, shade), 4, 4);
        }
        const auto gray = 255 * hue / (hues - 1);
        painter.setBrush(QColor(gray, gray, gray));
        painter.drawRoundedRect(cell(area, hues, shades + 1, hue, shades), 4, 4);
    }
}

} // namespace

void paintApplicationWindow(QPainter& painter, const QRectF& window,
                            const RunningApplication& application) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0, 0, 0, 60), 1));
    painter.setBrush(QColor(252, 252, 250));
    painter.drawRoundedRect(window, cornerRadius, cornerRadius);
    painter.setPen(QColor(110, 110, 110));
    painter.drawText(QRectF(window.left(), window.top(), window.width(), titleBarHeight),
                     Qt::AlignCenter, QString::fromStdString(application.localizedName));
    const auto area = window.adjusted(margin, titleBarHeight + margin / 2, -margin, -margin);
    painter.setPen(Qt::NoPen);
    if (application == colorsApplication) {
        paintChart(painter, area);
    } else if (std::ranges::find(meetingApplications, application.bundleIdentifier) !=
               meetingApplications.end()) {
        paintFaces(painter, area);
    } else {
        painter.setPen(QColor(30, 30, 30));
        painter.drawText(area, Qt::AlignLeft | Qt::TextWordWrap, QString::fromUtf8(page));
    }
}

} // namespace nocta
