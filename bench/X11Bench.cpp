// Measures Nocta on an X server: the time from a slider value to the server, and the whole program
// from its start until it is idle.

#include "app/AppDelegate.h"
#include "app/SharedInstances.h"
#include "backends/linux/files/IniDefaultsStore.h"
#include "backends/linux/shell/QtRunLoop.h"
#include "backends/linux/x11/X11Connection.h"
#include "backends/linux/x11/X11Displays.h"
#include "backends/linux/x11/X11GammaOutput.h"
#include "backends/virtual/VirtualDesktop.h"
#include "backends/virtual/VirtualViews.h"
#include "support/Process.h"
#include "support/XClient.h"
#include "support/XServer.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nocta {
namespace {

/// An X server that uses `count` outputs.
struct ServerWithOutputs : XServer {
    explicit ServerWithOutputs(std::int64_t count) : XServer(Kind::xorgDummy) {
        for (std::int64_t i = 1; i < count; ++i) {
            const auto name = "DUMMY" + std::to_string(i);
            xrandr({"--addmode", name, "1280x720"});
            xrandr({"--output", name, "--mode", "1280x720", "--pos",
                    std::to_string(i % 3 * 1280) + "x" + std::to_string(i / 3 * 720)});
        }
    }
};

/// The program's services on a real X server and the desktop's own event loop. The settings are in
/// memory, or in a file on the disk. With `inMemoryBesideFile`, the settings are in memory, and the
/// benchmark writes the file.
struct SessionOnX11 {
    enum class Store { inMemory, onDisk, inMemoryBesideFile };

    explicit SessionOnX11(std::int64_t outputs, Store store = Store::inMemory)
        : server(outputs), userDefaults(store == Store::onDisk ? static_cast<DefaultsStore&>(onDisk)
                                                               : desktop.userDefaults) {
        delegate.applicationDidFinishLaunching();
        do {
            QCoreApplication::processEvents();
        } while (guardian.isStarting()); // until then, writes wait for the guardian
    }
    SessionOnX11(const SessionOnX11&) = delete;
    SessionOnX11& operator=(const SessionOnX11&) = delete;
    ~SessionOnX11() { delegate.applicationWillTerminate(); }

    ServerWithOutputs server;
    VirtualDesktop desktop; // for the ports that are not measured
    QtRunLoop runLoop;
    X11Connection connection{runLoop};
    X11Displays displays{connection, runLoop, desktop.notificationCenter};
    Guardian guardian{connection, runLoop};
    TemporaryFolder folder;
    IniDefaultsStore onDisk{folder.path() + "/nocta.conf", runLoop};
    DefaultsStore& userDefaults;
    X11GammaOutput gammaOutput{connection, displays, guardian};
    Desktop ports{.bundle = desktop.bundle,
                  .runLoop = runLoop,
                  .notificationCenter = desktop.notificationCenter,
                  .userDefaults = userDefaults,
                  .uuidSource = desktop.uuidSource,
                  .displays = displays,
                  .gammaOutput = gammaOutput,
                  .backlight = desktop.displays,
                  .keyEvents = desktop.keyboard,
                  .locationManager = desktop.location,
                  .loginItem = desktop.loginItem,
                  .dynamicLibraries = desktop.filter,
                  .displayFilter = desktop.filter,
                  .workspace = desktop.workspace,
                  .userNotificationCenter = desktop.notifications,
                  .urlSession = desktop.urlSession,
                  .updater = desktop.updater,
                  .overlayWindows = desktop.overlayWindows,
                  .statusBar = desktop.statusBar,
                  .popover = desktop.popover,
                  .appWindows = desktop.appWindows,
                  .application = desktop.application};
    SharedInstances instances{ports};
    VirtualViews views;
    AppDelegate delegate{instances, views};
};

/// Measures the time from writing a brightness to the settings until the requests to the X server
/// are flushed. The second argument is a `Store`. The file is written after the flush, but its disk
/// access slows down the next step. `inMemoryBesideFile` writes the same file between the steps,
/// without storing a setting in it, so that it differs from `onDisk` only in what the file store
/// does before the flush.
void sliderToServer(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    const auto store = static_cast<SessionOnX11::Store>(state.range(1));
    SessionOnX11 session(state.range(0), store);
    double brightness = 0;
    for (auto _ : state) {
        brightness = brightness < 1 ? brightness + 0.01 : 0.1;
        Clock::time_point flushed;
        const auto start = Clock::now();
        session.instances.settingsManager().unifiedBrightness.set(brightness);
        session.runLoop.post([&] { flushed = Clock::now(); }); // runs right after the flush
        QCoreApplication::processEvents();
        state.SetIterationTime(std::chrono::duration<double>(flushed - start).count());
        if (store == SessionOnX11::Store::inMemoryBesideFile) {
            session.onDisk.setDouble(brightness, "unifiedBrightness");
            QCoreApplication::processEvents(); // ends the turn
        }
        QCoreApplication::processEvents(); // writes the file
        session.desktop.trace.clear();
        session.connection
            .synchronize(); // the next step finds an idle server, as a step with a real mouse does
    }
}
BENCHMARK(sliderToServer)
    ->ArgsProduct({{1, 4}, {0, 1, 2}})
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// Measures the processor time that this process uses from the moment automatic warmth is switched
/// on or off until the fifteenth step of the transition has been sent, at its normal speed.
void glideToServer(benchmark::State& state) {
    SessionOnX11 session(state.range(0));
    auto& settings = session.instances.settingsManager();
    settings.warmthLevel.set(0.5);
    auto& shown = session.instances.colorTemperatureService().currentTemperature;
    for (auto _ : state) {
        int steps = 0;
        const auto count = shown.subscribe([&](std::int64_t /*kelvin*/) { ++steps; });
        const auto before = processorSeconds();
        settings.autoWarmthEnabled.set(!settings.autoWarmthEnabled.get());
        while (steps < 15) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        QCoreApplication::processEvents();
        state.SetIterationTime(processorSeconds() - before);
        session.desktop.trace.clear();
    }
}
BENCHMARK(glideToServer)
    ->Arg(1)
    ->Arg(4)
    ->UseManualTime()
    ->Iterations(20)
    ->Unit(benchmark::kMicrosecond);

/// A system tray that hosts no icons, but receives the requests to host one.
class Tray {
public:
    Tray() : x_(xcb_connect(nullptr, nullptr)) {
        const auto root = xcb_setup_roots_iterator(xcb_get_setup(x_)).data->root;
        const auto window = xcb_generate_id(x_);
        xcb_create_window(x_, XCB_COPY_FROM_PARENT, window, root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(x_, window, atom("_NET_SYSTEM_TRAY_S0"), XCB_CURRENT_TIME);
        dock_ = atom("_NET_SYSTEM_TRAY_OPCODE");
    }
    Tray(const Tray&) = delete;
    Tray& operator=(const Tray&) = delete;
    ~Tray() { xcb_disconnect(x_); }

    /// Returns once a client has asked to be hosted.
    void waitForIcon() {
        for (bool asked = false; !asked;) {
            const std::unique_ptr<xcb_generic_event_t, FreeDeleter> event(xcb_wait_for_event(x_));
            asked = event == nullptr ||
                    ((event->response_type & 0x7f) == XCB_CLIENT_MESSAGE &&
                     reinterpret_cast<const xcb_client_message_event_t&>(*event).type == dock_);
        }
    }

private:
    xcb_atom_t atom(const std::string& name) {
        const std::unique_ptr<xcb_intern_atom_reply_t, FreeDeleter> reply(xcb_intern_atom_reply(
            x_, xcb_intern_atom(x_, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
            nullptr));
        return reply->atom;
    }

    xcb_connection_t* x_;
    xcb_atom_t dock_ = XCB_ATOM_NONE;
};

/// Returns the size in KiB.
double proportionalSetSize(pid_t process) {
    double sum = 0;
    std::ifstream smaps("/proc/" + std::to_string(process) + "/smaps_rollup");
    for (std::string word; smaps >> word;) {
        if (word == "Pss:") {
            double size = 0;
            smaps >> size;
            sum += size;
        }
    }
    return sum;
}

pid_t childOf(pid_t process) {
    std::ifstream children("/proc/" + std::to_string(process) + "/task/" + std::to_string(process) +
                           "/children");
    pid_t child = 0;
    children >> child;
    return child;
}

/// Measures the time from the start of the process until it asks the tray to host its icon, and the
/// memory of the program and its guardian once they are idle.
void startToTrayIcon(benchmark::State& state) {
    const XServer server(XServer::Kind::xorgDummy);
    XClient client;
    TemporaryFolder home;
    Process::Environment const environment = {
        {"HOME", home.path()},
        {"XDG_CONFIG_HOME", ""},
        {"XDG_RUNTIME_DIR", home.path()},
        {"WAYLAND_DISPLAY", ""},
        {"SESSION_MANAGER", ""},
        {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + home.path() + "/no-bus"}};
    const auto crtc = client.activeCrtcs().at(0);
    const auto factory = client.ramp(crtc);
    std::filesystem::create_directories(home.path() + "/.config/nocta");
    writeFile(home.path() + "/.config/nocta/nocta.conf", "[General]\nisFirstLaunch=false\n");
    Tray tray;
    double program = 0;
    double guardian = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        Process nocta({programFolder() + "/nocta"}, environment, home.path() + "/output");
        tray.waitForIcon();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(taken.count());
        waitUntil([&] { return client.ramp(crtc) != factory; });
        program = proportionalSetSize(nocta.id());
        guardian = proportionalSetSize(childOf(nocta.id()));
        nocta.signal(SIGTERM);
        nocta.wait();
    }
    state.counters["program_KiB"] = program;
    state.counters["guardian_KiB"] = guardian;
}
BENCHMARK(startToTrayIcon)->UseManualTime()->Iterations(20)->Unit(benchmark::kMillisecond);

/// Runs the program with a window manager and a panel, and simulates a person who uses the mouse.
class Person {
public:
    Person() {
        std::filesystem::create_directories(home_.path() + "/.config/nocta");
        writeFile(home_.path() + "/.config/nocta/nocta.conf",
                  "[General]\nautoWarmthEnabled=false\nisFirstLaunch=false\n");
        windowManager_ = start("openbox");
        waitUntil([&] { return client_.hasWindowManager(); });
        panel_ = start("tint2");
        nocta_ = start(programFolder() + "/nocta");
        waitUntil([&] { // until the panel has placed the icon and it is drawn
            const auto found = icons();
            return !found.empty() && std::ranges::any_of(client_.picture(found.front()),
                                                         [](auto level) { return level > 200; });
        });
    }

    /// Clicks the icon and returns once the popover and its slider are visible.
    void openPopover() {
        const auto icon = icons().front();
        client_.click(icon.x + icon.width / 2, icon.y + icon.height / 2);
        while (!isSliderSeen()) {
        }
    }
    void closePopover() {
        client_.click(5, 5); // so that the next click on the icon is not a double click
        while (!client_.windowsOfSize(300, 280).empty()) {
        }
    }
    void openAndClosePreferences() {
        openPopover();
        client_.click(popover()->x + 43, popover()->y + 262);
        const auto preferences = [&] {
            return find(
                [&](const auto& w) { return client_.nameOf(w.id) == "Preferences — Nocta"; });
        };
        while (preferences().empty() || client_.focus() != preferences().front().id) {
        }
        client_.askToClose(preferences().front().id);
        while (!preferences().empty()) {
        }
    }
    double memory() const { return proportionalSetSize(nocta_->id()); }

private:
    std::vector<XClient::TopWindow>
    find(const std::function<bool(const XClient::TopWindow&)>& matches) {
        return client_.windows(matches);
    }
    std::vector<XClient::TopWindow> icons() {
        return find([&](const auto& w) {
            return w.width < 64 && w.height < 64 && client_.hasProperty(w.id, "_XEMBED_INFO");
        });
    }
    /// Returns the topmost window if it has the size of the popover.
    std::optional<XClient::TopWindow> popover() {
        const auto top = client_.topWindows().back();
        return top.width == 300 && top.height == 280 ? std::optional(top) : std::nullopt;
    }
    /// Returns whether the filled part of the slider's track, the only color in its row, is
    /// visible.
    bool isSliderSeen() {
        const auto found = popover();
        if (!found) {
            return false;
        }
        auto track = *found;
        track.x += 40;
        track.y += 44;
        track.width = 1;
        track.height = 1;
        const auto pixel = client_.picture(track);
        return pixel[0] + 60 < pixel[2]; // less blue than red
    }
    std::unique_ptr<Process> start(const std::string& program) {
        return std::make_unique<Process>(
            std::vector{program},
            Process::Environment{
                {"HOME", home_.path()},
                {"XDG_CONFIG_HOME", ""},
                {"XDG_RUNTIME_DIR", home_.path()},
                {"WAYLAND_DISPLAY", ""},
                {"SESSION_MANAGER", ""},
                {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + home_.path() + "/no-bus"}},
            home_.path() + "/output");
    }

    XServer server_{XServer::Kind::xorgDummy};
    XClient client_;
    TemporaryFolder home_;
    std::unique_ptr<Process> windowManager_;
    std::unique_ptr<Process> panel_;
    std::unique_ptr<Process> nocta_;
};

/// Measures the time from a click on the icon until the popover's slider is visible to another
/// client.
void clickToPopover(benchmark::State& state) {
    Person person;
    person.openPopover(); // so that the fonts are loaded
    person.closePopover();
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        person.openPopover();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(taken.count());
        person.closePopover();
    }
}
BENCHMARK(clickToPopover)->UseManualTime()->Iterations(20)->Unit(benchmark::kMillisecond);

/// Measures the memory of the idle program, and its memory after its windows were opened and
/// closed.
void memoryAfterWindows(benchmark::State& state) {
    Person person;
    state.counters["atRest_KiB"] = person.memory();
    int rounds = 0;
    for (auto _ : state) {
        person.openAndClosePreferences();
        if (++rounds == 1) {
            state.counters["afterOne_KiB"] = person.memory();
        }
    }
    state.counters["afterAll_KiB"] = person.memory();
}
BENCHMARK(memoryAfterWindows)->Iterations(10)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace nocta

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
