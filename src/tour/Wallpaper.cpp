#include "tour/Wallpaper.h"

#include <QColor>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace nocta {

namespace {

constexpr std::minstd_rand::result_type seed = 20260320;
constexpr int grain = 5; // plus or minus this many levels

struct Ridge {
    double height; ///< distance from the top, as a fraction of the picture
    double roughness;
    QRgb color;
};
constexpr std::array ridges = {Ridge{0.56, 0.10, 0xFF7C83B4}, Ridge{0.64, 0.08, 0xFF5B6A9C},
                               Ridge{0.73, 0.07, 0xFF3E5C6E}, Ridge{0.82, 0.05, 0xFF2C5646},
                               Ridge{0.91, 0.04, 0xFF1D3B2A}};

void paintSky(QPainter& painter, const QRectF& area) {
    QLinearGradient sky(area.topLeft(), area.bottomLeft());
    sky.setColorAt(0.0, QColor(58, 110, 190));
    sky.setColorAt(0.35, QColor(140, 180, 226));
    sky.setColorAt(0.6, QColor(250, 205, 160));
    painter.fillRect(area, sky);

    const QPointF sun(area.width() * 0.7, area.height() * 0.42);
    QRadialGradient glow(sun, area.height() * 0.5);
    glow.setColorAt(0.0, QColor(255, 244, 214));
    glow.setColorAt(0.08, QColor(255, 236, 180, 230));
    glow.setColorAt(0.3, QColor(255, 200, 120, 90));
    glow.setColorAt(1.0, QColor(255, 180, 100, 0));
    painter.fillRect(area, glow);
}

/// Paints a sum of waves. Each wave is half as long and half as high as the previous wave.
void paintRidge(QPainter& painter, const QRectF& area, const Ridge& ridge,
                std::minstd_rand& random) {
    constexpr int waves = 7;
    std::array<double, waves> phases{};
    for (auto& phase : phases) {
        phase = static_cast<double>(random() % 6283) / 1000;
    }
    QPainterPath path(area.bottomLeft());
    for (int x = 0; x < area.width() + 2; x += 2) {
        double offset = 0;
        for (int wave = 0; wave < waves; ++wave) {
            offset += std::sin(x / area.width() * 5 * std::ldexp(1.0, wave) +
                               phases.at(static_cast<std::size_t>(wave))) *
                      std::ldexp(ridge.roughness / 2, -wave);
        }
        path.lineTo(x, area.height() * (ridge.height + offset));
    }
    path.lineTo(area.bottomRight());
    QLinearGradient color(0, area.height() * ridge.height, 0, area.height());
    color.setColorAt(0, QColor(ridge.color).lighter(118));
    color.setColorAt(1, QColor(ridge.color).darker(125));
    painter.fillPath(path, color);
}

void addGrain(QImage& picture, std::minstd_rand& random) {
    const auto moved = [&](int level) {
        return std::clamp(level + static_cast<int>(random() % (2 * grain + 1)) - grain, 0, 255);
    };
    for (int y = 0; y < picture.height(); ++y) {
        auto* const line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            line[x] = qRgb(moved(qRed(line[x])), moved(qGreen(line[x])), moved(qBlue(line[x])));
        }
    }
}

} // namespace

QImage paintWallpaper(const QSize& size) {
    QImage picture(size, QImage::Format_RGB32);
    std::minstd_rand random(seed);
    {
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF area({}, QSizeF(size));
        paintSky(painter, area);
        for (const auto& ridge : ridges) {
            paintRidge(painter, area, ridge, random);
        }
    }
    addGrain(picture, random);
    return picture;
}

} // namespace nocta
