// What the arithmetic of the tables costs, without any display server.

#include "app/SharedInstances.h"
#include "backends/virtual/VirtualDesktop.h"
#include "display/GammaController.h"
#include "display/GammaTables.h"

#include <benchmark/benchmark.h>

namespace nocta {
namespace {

constexpr DisplayId displayCount = 4;

void plugDisplays(VirtualDesktop& desktop) {
    for (DisplayId id = 1; id <= displayCount; ++id) {
        desktop.displays.plug({.id = id});
    }
}

/// The limit for building three tables: storing as many bytes, computed from nothing.
void storeThreeTables(benchmark::State& state) {
    float value = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(value);
        GammaTables tables;
        tables.red.fill(value);
        tables.green.fill(value);
        tables.blue.fill(value);
        benchmark::DoNotOptimize(tables);
    }
}
BENCHMARK(storeThreeTables);

void buildThreeTables(benchmark::State& state) {
    std::int64_t kelvin = 2700;
    for (auto _ : state) {
        benchmark::DoNotOptimize(kelvin);
        auto tables = makeGammaTables(kelvin, 0.3F, 0.9F);
        benchmark::DoNotOptimize(tables);
    }
}
BENCHMARK(buildThreeTables);

/// An output that takes the tables and does nothing with them.
class Sink final : public GammaOutput {
public:
    Status setDisplayTransferByTable(DisplayId /*display*/, std::span<const float> red,
                                     std::span<const float> green,
                                     std::span<const float> blue) override {
        benchmark::DoNotOptimize(red.data());
        benchmark::DoNotOptimize(green.data());
        benchmark::DoNotOptimize(blue.data());
        return statusSuccess;
    }
    void displayRestoreColorSyncSettings() override {}
};

/// One call of a setter for four virtual displays, up to the port.
void setDimmingOnFourDisplays(benchmark::State& state) {
    VirtualDesktop desktop;
    plugDisplays(desktop);
    DisplayService displayService(desktop.displays);
    Sink sink;
    GammaController gamma(displayService, sink);
    gamma.start(desktop.notificationCenter);
    float dimming = 0;
    for (auto _ : state) {
        dimming = dimming < 0.9F ? dimming + 0.01F : 0.0F;
        gamma.setDimming(dimming);
    }
}
BENCHMARK(setDimmingOnFourDisplays);

/// The same with the virtual desktop behind the port, which copies the tables and writes a line of
/// its trace for each display.
void setDimmingOnFourDisplaysWithTrace(benchmark::State& state) {
    VirtualDesktop desktop;
    plugDisplays(desktop);
    SharedInstances instances(desktop.ports);
    instances.gammaController().start(desktop.notificationCenter);
    float dimming = 0;
    for (auto _ : state) {
        dimming = dimming < 0.9F ? dimming + 0.01F : 0.0F;
        instances.gammaController().setDimming(dimming);
        desktop.trace.clear();
    }
}
BENCHMARK(setDimmingOnFourDisplaysWithTrace);

} // namespace
} // namespace nocta
