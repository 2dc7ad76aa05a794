#include "tour/DisplayPipeline.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace nocta {

namespace {

constexpr QRgb opaque = 0xFF000000;

// The luminance weights of ITU-R Recommendation BT.709, in units of 1/65536.
constexpr unsigned redWeight = 13933;
constexpr unsigned greenWeight = 46871;
constexpr unsigned blueWeight = 4732;
static_assert(redWeight + greenWeight + blueWeight == 65536);

// These functions convert between the level of a channel and its linear light, both in 0.0–1.0, as
// defined by IEC 61966-2-1 (sRGB).
double lightOf(double level) {
    return level <= 0.04045 ? level / 12.92 : std::pow((level + 0.055) / 1.055, 2.4);
}
double levelOf(double light) {
    return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

/// Returns the nearest entry of a table of any length. `place` is in 0.0–1.0.
double entry(const std::vector<float>& table, double place) {
    const auto last = static_cast<double>(table.size() - 1);
    return double{table[static_cast<std::size_t>(std::lround(place * last))]};
}

std::array<QRgb, 256> makeTable(const std::vector<float>& transfer, double backlight, int shift) {
    std::array<QRgb, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const auto sent = static_cast<double>(i) / 255;
        const auto level = transfer.empty() ? sent : entry(transfer, sent);
        const auto seen = levelOf(backlight * lightOf(std::clamp(level, 0.0, 1.0)));
        table[i] = static_cast<QRgb>(std::lround(255 * seen)) << shift;
    }
    return table;
}

} // namespace

DisplayPipeline::DisplayPipeline(const VirtualDisplays::Display& display, bool isGray)
    : isGray_(isGray) {
    const auto backlight = display.isBuiltIn ? double{display.backlight} : 1.0;
    red_ = makeTable(display.red, backlight, 16);
    green_ = makeTable(display.green, backlight, 8);
    blue_ = makeTable(display.blue, backlight, 0);
}

void DisplayPipeline::apply(QImage& picture) const {
    for (int y = 0; y < picture.height(); ++y) {
        auto* const line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (auto* pixel = line; pixel != line + picture.width(); ++pixel) {
            auto red = static_cast<unsigned>(qRed(*pixel));
            auto green = static_cast<unsigned>(qGreen(*pixel));
            auto blue = static_cast<unsigned>(qBlue(*pixel));
            if (isGray_) {
                const auto luma = (redWeight * red + greenWeight * green + blueWeight * blue) >> 16;
                red = green = blue = luma;
            }
            *pixel = opaque | red_[red] | green_[green] | blue_[blue];
        }
    }
}

} // namespace nocta
