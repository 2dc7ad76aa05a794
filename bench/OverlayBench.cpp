// Measures how fast the windows of a break appear on an X server, and how smoothly they fade.

#include "app/SharedInstances.h"
#include "backends/linux/shell/QtOverlayWindows.h"
#include "backends/linux/shell/QtRunLoop.h"
#include "backends/linux/x11/X11Displays.h"
#include "backends/virtual/VirtualDesktop.h"
#include "breaks/BreakOverlayController.h"
#include "support/Process.h"
#include "support/XClient.h"
#include "support/XServer.h"
#include "ui/WidgetViews.h"

#include <QApplication>
#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>

namespace nocta {
namespace {

constexpr int maxOutputs = 4;

void useOutputs(const XServer& server, std::int64_t count) {
    for (std::int64_t i = 1; i < maxOutputs; ++i) {
        const auto name = "DUMMY" + std::to_string(i);
        if (i < count) {
            server.xrandr({"--output", name, "--mode", "1280x720", "--pos",
                           std::to_string(1920 + 1280 * (i - 1)) + "x0"});
        } else {
            server.xrandr({"--output", name, "--off"});
        }
    }
    waitUntil([&] {
        QCoreApplication::processEvents();
        return QGuiApplication::screens().size() == count;
    });
}

/// Measures the time from the start of a break until every window is mapped and has been painted
/// once, as observed by another client.
void breakStartToLastWindow(benchmark::State& state, const XServer& server) {
    useOutputs(server, state.range(0));
    XClient client;
    VirtualDesktop desktop; // for the ports that are not measured
    QtRunLoop runLoop;
    X11Connection connection(runLoop);
    X11Displays displays(connection, runLoop, desktop.notificationCenter);
    const LayerShell layerShell;
    QtOverlayWindows windows(runLoop, displays, layerShell, &connection, nullptr);
    SharedInstances instances(desktop.ports);
    WidgetViews views(instances);
    BreakOverlayController overlay(instances.breakTimer(), windows, desktop.application, views,
                                   desktop.notificationCenter, runLoop);
    const auto before = client.topWindows().size();
    const auto serve = [](auto condition) {
        while (!condition()) {
            QCoreApplication::processEvents();
        }
    };
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        desktop.notificationCenter.post(breakDidStartNotification);
        QCoreApplication::processEvents();
        serve([&] {
            return client.topWindows().size() == before + static_cast<std::size_t>(state.range(0));
        });
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(taken.count());
        desktop.notificationCenter.post(breakDidEndNotification);
        serve([&] { return !overlay.isShowing.get(); });
        desktop.trace.clear();
    }
}

/// Measures how long a whole fade-in takes, and how many of its 24 steps another client observes.
void fadeIn(benchmark::State& state, const XServer& server) {
    useOutputs(server, 1);
    XClient client;
    VirtualDesktop desktop;
    QtRunLoop runLoop;
    const LayerShell layerShell;
    QtOverlayWindows windows(runLoop, desktop.displays, layerShell, nullptr, nullptr);
    SharedInstances instances(desktop.ports);
    WidgetViews views(instances);
    double seen = 0;
    for (auto _ : state) {
        const auto window = windows.makeWindow(windows.screens().at(0), {.level = 1000},
                                               views.makeBreakOverlayView([] {}, [] {}));
        window->makeKeyAndOrderFront();
        while (client.topWindows().empty()) {
            QCoreApplication::processEvents();
        }
        const auto id = client.topWindows().back().id;
        std::atomic<bool> hasEnded = false;
        std::thread watcher([&] {
            std::uint32_t last = 0;
            while (!hasEnded) {
                const auto opacity = client.number(id, "_NET_WM_WINDOW_OPACITY");
                seen += opacity > last ? 1 : 0;
                last = opacity;
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        });
        const auto start = std::chrono::steady_clock::now();
        std::chrono::duration<double> taken{};
        window->animateAlpha(1, std::chrono::milliseconds(400), TimingFunction::easeInEaseOut, [&] {
            taken = std::chrono::steady_clock::now() - start;
            hasEnded = true;
        });
        while (!hasEnded) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        watcher.join();
        state.SetIterationTime(taken.count());
    }
    state.counters["stepsSeen"] = benchmark::Counter(seen, benchmark::Counter::kAvgIterations);
}

} // namespace
} // namespace nocta

int main(int argc, char** argv) {
    const nocta::XServer server(nocta::XServer::Kind::xorgDummy);
    for (int i = 1; i < nocta::maxOutputs; ++i) {
        server.xrandr({"--addmode", "DUMMY" + std::to_string(i), "1280x720"});
    }
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    for (const auto outputs : {1, nocta::maxOutputs}) {
        benchmark::RegisterBenchmark(
            "breakStartToLastWindow",
            [&](benchmark::State& state) { nocta::breakStartToLastWindow(state, server); })
            ->Arg(outputs)
            ->UseManualTime()
            ->Iterations(10)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::RegisterBenchmark("fadeIn",
                                 [&](benchmark::State& state) { nocta::fadeIn(state, server); })
        ->UseManualTime()
        ->Iterations(10)
        ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
