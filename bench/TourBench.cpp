// Measures painting a virtual display as the user would see it.

#include "backends/virtual/VirtualDesktop.h"
#include "tour/DisplayPipeline.h"

#include <benchmark/benchmark.h>

namespace nocta {
namespace {

/// Paints one display of 1920 × 1080 pixels, with the filter off and on.
void paintDisplay(benchmark::State& state) {
    VirtualDesktop desktop;
    desktop.displays.plug({.id = 1, .isBuiltIn = true, .backlight = 0.5F});
    QImage picture(1920, 1080, QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            picture.setPixel(x, y, qRgb(x & 255, y & 255, (x ^ y) & 255));
        }
    }
    for (auto _ : state) {
        DisplayPipeline(desktop.displays.display(1), state.range(0) != 0).apply(picture);
        benchmark::DoNotOptimize(picture.bits());
    }
}
BENCHMARK(paintDisplay)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

/// Reads and writes every pixel, for comparison.
void copyPicture(benchmark::State& state) {
    const QImage picture(1920, 1080, QImage::Format_RGB32);
    for (auto _ : state) {
        benchmark::DoNotOptimize(picture.copy());
    }
}
BENCHMARK(copyPicture)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace nocta
