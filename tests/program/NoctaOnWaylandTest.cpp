#include "backends/linux/files/FileDescriptor.h"
#include "backends/linux/wayland/WaylandSession.h"
#include "support/EngineTable.h"
#include "support/Process.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <memory>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace nocta {
namespace {

constexpr double warmest = 2700; // kelvin
constexpr auto refused =
    "nocta: cannot set the gamma of HEADLESS-1: another program seems to control it\n";

/// The real program in a private sway with two outputs. Its windows are not visible.
class NoctaOnWaylandTest : public ::testing::Test {
protected:
    Sway sway;
    TemporaryFolder home;
    std::string output = home.path() + "/output";
    std::string xDisplay = std::to_string(1000 + getpid()); // too high for a real server
    std::string xSocketPath = "/tmp/.X11-unix/X" + xDisplay;
    FileDescriptor xSocket{socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    std::unique_ptr<Process> nocta;

    ~NoctaOnWaylandTest() override { std::filesystem::remove(xSocketPath); }

    void SetUp() override {
        if (!Sway::canLogGamma()) {
            GTEST_SKIP() << "gamma tables cannot be read with this version of wlroots";
        }
        sway.addOutput();
        listenAsXServer();
    }

    void start(const std::string& settings, const std::string& desktop = "") {
        const auto folder = home.path() + "/.config/nocta";
        std::filesystem::create_directories(folder);
        writeFile(folder + "/nocta.conf",
                  "[General]\nautoWarmthEnabled=false\nisFirstLaunch=false\nallowFullBlack=true\n" +
                      settings);
        nocta = std::make_unique<Process>(
            std::vector{programFolder() + "/nocta"},
            Process::Environment{{"HOME", home.path()},
                                 {"XDG_CONFIG_HOME", ""},
                                 {"XDG_STATE_HOME", ""},
                                 {"XDG_CURRENT_DESKTOP", desktop},
                                 {"DISPLAY", ":" + xDisplay},
                                 {"QT_QPA_PLATFORM", "offscreen"},
                                 {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + home.path() + "/none"},
                                 {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + home.path() + "/none"}},
            output);
    }

    bool bothShow(double brightness, double kelvin) {
        return waitForBoth([&](const std::vector<std::uint16_t>& levels) {
            return isEngineTable(levels, brightness, kelvin);
        });
    }
    bool bothAreRestored() {
        return waitForBoth([](const std::vector<std::uint16_t>& levels) { return levels.empty(); });
    }
    bool hasConnectedToX() const {
        pollfd connection{.fd = xSocket.get(), .events = POLLIN, .revents = 0};
        return poll(&connection, 1, 0) > 0;
    }

private:
    template <class Condition>
    bool waitForBoth(Condition condition) {
        return waitUntil([&] {
            return std::ranges::all_of(std::array{"HEADLESS-1", "HEADLESS-2"}, [&](auto* name) {
                const auto events = sway.gammaOf(name);
                return !events.empty() && condition(events.back());
            });
        });
    }
    /// Listens on the socket of the X display, so that the test can detect a connection.
    void listenAsXServer() {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::filesystem::create_directories("/tmp/.X11-unix");
        std::filesystem::remove(xSocketPath);
        xSocketPath.copy(address.sun_path, sizeof address.sun_path - 1);
        ASSERT_EQ(bind(xSocket.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        ASSERT_EQ(listen(xSocket.get(), 1), 0);
    }
};

TEST_F(NoctaOnWaylandTest, EveryOutputShowsTheTablesUntilTheProgramQuits) {
    for (const auto& [brightness, setting] :
         {std::pair{1.0, "1"}, {0.5, "0.5"}, {0.3, "0.3"}, {0.0, "0"}}) {
        start("warmthLevel=1\nunifiedBrightness=" + std::string(setting) + "\n");
        EXPECT_TRUE(bothShow(brightness, warmest)) << setting << contentOf(output);
        nocta->signal(SIGTERM);
        EXPECT_EQ(nocta->wait(), 0) << contentOf(output);
        EXPECT_TRUE(bothAreRestored()) << setting;
    }
    EXPECT_FALSE(hasConnectedToX());
}

TEST_F(NoctaOnWaylandTest, ProgramConnectsToXOnGnome) {
    start("", "ubuntu:GNOME");
    EXPECT_TRUE(waitUntil([&] { return hasConnectedToX(); })) << contentOf(output);
}

TEST_F(NoctaOnWaylandTest, ScreenIsRestoredWhenTheProgramIsKilled) {
    start("warmthLevel=1\nunifiedBrightness=0.25\n");
    EXPECT_TRUE(bothShow(0.25, warmest)) << contentOf(output);
    nocta->signal(SIGKILL);
    nocta->wait();
    EXPECT_TRUE(bothAreRestored());
}

TEST_F(NoctaOnWaylandTest, ProgramExitsWhenTheCompositorIsKilled) {
    start("warmthLevel=1\nunifiedBrightness=0.25\n");
    EXPECT_TRUE(bothShow(0.25, warmest)) << contentOf(output);
    sway.kill();
    const auto status = nocta->wait();
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1) << contentOf(output);
    EXPECT_NE(contentOf(output).find("nocta: the Wayland compositor has closed the connection\n"),
              std::string::npos)
        << contentOf(output);
}

TEST_F(NoctaOnWaylandTest, OutputTakenByAnotherGammaProgramIsReportedOnce) {
    start("warmthLevel=1\nunifiedBrightness=0.25\n");
    EXPECT_TRUE(bothShow(0.25, warmest)) << contentOf(output);
    const auto isReported = [&] { return contentOf(output).find(refused) != std::string::npos; };
    // This version of the compositor gives gamma control to the newest client that requests it.
    for (int attempt = 0; attempt < 10 && !isReported(); ++attempt) {
        WaylandSession other;
        const WlrGammaOutput gamma(other.connection, other.displays, other.runLoop);
        const auto before = sway.gammaOf("HEADLESS-1").size();
        EXPECT_TRUE(
            waitUntil([&] { return isReported() || sway.gammaOf("HEADLESS-1").size() > before; }));
        EXPECT_TRUE(other.connection.synchronize()) << "the other program should stay connected";
    }
    EXPECT_TRUE(isReported()) << contentOf(output);
    const auto printed = contentOf(output);
    EXPECT_EQ(printed.find(refused), printed.rfind(refused)) << printed;
    nocta->signal(SIGTERM);
    EXPECT_EQ(nocta->wait(), 0) << contentOf(output);
}

} // namespace
} // namespace nocta
