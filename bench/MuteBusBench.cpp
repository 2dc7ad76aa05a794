#include "support/MuteBus.h"
#include "support/PrivateBus.h"
#include "support/Process.h"
#include "support/XClient.h"
#include "support/XServer.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

// Measures the program when the message buses accept a connection but never answer.

namespace nocta {
namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;
using namespace std::chrono_literals;

constexpr int noBus = -1;
constexpr int goodBus = -2;
constexpr auto watched = 4s; // the popover opens after two seconds

/// Measures the time from the start of the process until the screen is dimmed, and the longest time
/// from a brightness key to the gamma ramp while the popover opens. The argument selects the
/// behavior of the session bus and the system bus: both are missing, both work, or both stop
/// answering after the given step.
void startBesideBuses(benchmark::State& state) {
    const XServer server(XServer::Kind::xorgDummy);
    XClient client;
    const TemporaryFolder home;
    const auto kind = static_cast<int>(state.range(0));
    std::unique_ptr<MuteBus> mute;
    std::optional<PrivateBus> good;
    auto address = "unix:path=" + home.path() + "/no-bus";
    if (kind == goodBus) {
        address = good.emplace("DBUS_SESSION_BUS_ADDRESS").address();
    } else if (kind != noBus) {
        mute = std::make_unique<MuteBus>(static_cast<MuteBus::After>(kind));
        address = mute->address();
    }
    const auto settings = home.path() + "/.config/nocta/nocta.conf";
    std::filesystem::create_directories(home.path() + "/.config/nocta");
    const auto crtc = client.activeCrtcs().at(0);
    Seconds longest{};
    for (auto _ : state) {
        writeFile(settings, "[General]\nautoWarmthEnabled=false\nisFirstLaunch=false\n");
        auto shown = client.ramp(crtc);
        const auto hasChanged = [&] { return client.ramp(crtc) != shown; };
        const auto start = Clock::now();
        Process nocta({programFolder() + "/nocta"},
                      {{"HOME", home.path()},
                       {"XDG_CONFIG_HOME", ""},
                       {"XDG_RUNTIME_DIR", home.path()},
                       {"WAYLAND_DISPLAY", ""},
                       {"SESSION_MANAGER", ""},
                       {"DBUS_SESSION_BUS_ADDRESS", address},
                       {"DBUS_SYSTEM_BUS_ADDRESS", address}},
                      home.path() + "/output");
        waitUntil(hasChanged);
        state.SetIterationTime(Seconds(Clock::now() - start).count());
        for (bool isDown = true; Clock::now() - start < watched; isDown = !isDown) {
            shown = client.ramp(crtc);
            const auto pressed = Clock::now();
            client.press(isDown ? brightnessDownSymbol : brightnessUpSymbol);
            waitUntil(hasChanged);
            longest = std::max(longest, Seconds(Clock::now() - pressed));
        }
        nocta.signal(SIGTERM);
        nocta.wait();
    }
    state.counters["longestTurn_ms"] = 1000 * longest.count();
}
BENCHMARK(startBesideBuses)
    ->Arg(noBus)
    ->Arg(goodBus)
    ->Arg(static_cast<int>(MuteBus::After::accepting))
    ->Arg(static_cast<int>(MuteBus::After::authentication))
    ->Arg(static_cast<int>(MuteBus::After::hello))
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace nocta

BENCHMARK_MAIN();
