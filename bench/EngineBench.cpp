// Measures the computation of the gamma tables and of sunrise and sunset, without a display server.

#include "app/AppDelegate.h"
#include "app/SharedInstances.h"
#include "backends/virtual/VirtualDesktop.h"
#include "backends/virtual/VirtualViews.h"
#include "base/Calendar.h"
#include "color/SunCalculator.h"
#include "display/GammaController.h"
#include "display/GammaTables.h"
#include "support/TimeZone.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>

namespace nocta {
namespace {

constexpr DisplayId displayCount = 4;

void plugDisplays(VirtualDesktop& desktop) {
    for (DisplayId id = 1; id <= displayCount; ++id) {
        desktop.displays.plug({.id = id});
    }
}

/// Only stores as many bytes as three tables contain, as a lower bound for building them.
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

/// A gamma output that ignores the tables.
class Sink final : public GammaOutput {
public:
    bool isAvailable() const override { return true; }
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

/// Calls one setter for four virtual displays, including the calls to the port.
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

/// Makes the same call with the virtual desktop, which copies the tables and adds a line to its
/// trace for each display.
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

constexpr auto noon =
    WallTime(std::chrono::sys_days(std::chrono::year(2026) / 6 / 21)) + std::chrono::hours(10);

/// Computes sunrise and sunset for one day.
void calculateSun(benchmark::State& state) {
    const TimeZone zone(zone::berlin); // otherwise the C library checks a file on every call
    double latitude = 52.52;
    for (auto _ : state) {
        benchmark::DoNotOptimize(latitude);
        auto times = SunCalculator().calculate(noon, latitude, 13.405, noon);
        benchmark::DoNotOptimize(times);
    }
}
BENCHMARK(calculateSun);

/// Makes only the calendar calls that this computation makes.
void calendarCallsOfTheSun(benchmark::State& state) {
    const TimeZone zone(zone::berlin);
    auto now = noon;
    for (auto _ : state) {
        benchmark::DoNotOptimize(now);
        auto number = Calendar::dayOfYear(now);
        auto offset = Calendar::offsetFromGMT(now);
        auto sunrise = Calendar::instantAt(Calendar::dayOf(now), 4, 43);
        auto sunset = Calendar::instantAt(Calendar::dayOf(now), 21, 33);
        benchmark::DoNotOptimize(number);
        benchmark::DoNotOptimize(offset);
        benchmark::DoNotOptimize(sunrise);
        benchmark::DoNotOptimize(sunset);
    }
}
BENCHMARK(calendarCallsOfTheSun);

/// Runs the idle program for an hour of virtual time, in automatic mode with one display, with or
/// without break reminders.
void idleHour(benchmark::State& state) {
    VirtualDesktop desktop;
    desktop.displays.plug({.id = 1});
    SharedInstances instances(desktop.ports);
    instances.settingsManager().breakTimerEnabled.set(state.range(0) != 0);
    VirtualViews views;
    AppDelegate delegate(instances, views);
    desktop.application.launch(delegate);
    double tables = 0;
    for (auto _ : state) {
        desktop.trace.clear();
        desktop.runLoop.advance(std::chrono::hours(1));
        tables += static_cast<double>(desktop.trace.calls("setDisplayTransferByTable").size());
    }
    state.counters["tables"] = tables / static_cast<double>(state.iterations());
    desktop.application.terminate();
}
BENCHMARK(idleHour)->ArgName("breaks")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace nocta
