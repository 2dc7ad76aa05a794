#include "ui/Colors.h"

#include <algorithm>
#include <cmath>

namespace nocta {

namespace {

constexpr int amberHue = 36; // degrees
constexpr int amberSaturation = 235;
constexpr int brightestAmber = 160; // lightness, of 255
constexpr int darkestAmber = 20;
constexpr int minSecondaryPercent = 55;
constexpr int minEdgePercent = 20;
constexpr int percentStep = 5;
constexpr double hairlinePart = 0.16;
constexpr double panelPart = 0.045;

double relativeLuminance(const QColor& color) {
    const auto linear = [](double level) {
        return level <= 0.04045 ? level / 12.92 : std::pow((level + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

/// Returns the lower of the color's contrasts with the window and with a panel, because text
/// appears on both.
double minContrast(const QColor& color, const QPalette& palette) {
    return std::min(contrastRatio(color, palette.color(QPalette::Window)),
                    contrastRatio(color, panelColor(palette)));
}

/// Returns the weakest color between the window and its text that has the contrast.
QColor weakestMix(const QPalette& palette, int minPercent, double contrast) {
    for (int percent = minPercent; percent < 100; percent += percentStep) {
        const auto color = shadeColor(palette, percent / 100.0);
        if (minContrast(color, palette) >= contrast) {
            return color;
        }
    }
    return palette.color(QPalette::WindowText);
}

} // namespace

double contrastRatio(const QColor& a, const QColor& b) {
    const auto [darker, lighter] = std::minmax({relativeLuminance(a), relativeLuminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor accentColor(const QPalette& palette) {
    for (auto lightness = brightestAmber; lightness > darkestAmber; lightness -= 2) {
        const auto amber = QColor::fromHsl(amberHue, amberSaturation, lightness);
        if (minContrast(amber, palette) >= visibleContrast) {
            return amber;
        }
    }
    return palette.color(QPalette::WindowText);
}

QColor textOnAccent(const QPalette& palette) {
    const auto accent = accentColor(palette);
    return contrastRatio(Qt::white, accent) > contrastRatio(Qt::black, accent) ? Qt::white
                                                                               : Qt::black;
}

QColor secondaryColor(const QPalette& palette) {
    return weakestMix(palette, minSecondaryPercent, readableContrast);
}

QColor edgeColor(const QPalette& palette) {
    return weakestMix(palette, minEdgePercent, visibleContrast);
}

QColor shadeColor(const QPalette& palette, double part) {
    return mixed(palette.color(QPalette::Window), palette.color(QPalette::WindowText), part);
}

QColor hairlineColor(const QPalette& palette) {
    return shadeColor(palette, hairlinePart);
}

QColor panelColor(const QPalette& palette) {
    const auto window = palette.color(QPalette::Window);
    const auto isDark = window.lightness() < palette.color(QPalette::WindowText).lightness();
    return mixed(window, Qt::white, isDark ? panelPart : 0.5);
}

QColor mixed(const QColor& under, const QColor& over, double part) {
    const auto blend = [part](float a, float b) {
        return static_cast<float>(std::lerp(double{a}, double{b}, part));
    };
    return QColor::fromRgbF(blend(under.redF(), over.redF()), blend(under.greenF(), over.greenF()),
                            blend(under.blueF(), over.blueF()));
}

} // namespace nocta
