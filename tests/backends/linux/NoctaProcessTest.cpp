#include "support/Process.h"
#include "support/XClient.h"
#include "support/XServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

// The program itself on a private X server: a person who presses keys and ends it in every way,
// and another client that reads the gamma ramps.

namespace nocta {
namespace {

class NoctaProcessTest : public ::testing::TestWithParam<XServer::Kind> {
protected:
    XServer server{GetParam()};
    XClient client;
    TemporaryFolder home;
    std::string output = home.path() + "/output";
    std::string settings = home.path() + "/.config/nocta/nocta.conf";
    std::unique_ptr<Process> nocta;

    void SetUp() override {
        if (GetParam() == XServer::Kind::xorgDummy) {
            server.plugSecondOutput();
        }
        for (const auto crtc : client.activeCrtcs()) {
            client.setRamp(crtc, factory());
        }
    }

    static XClient::Ramp factory() { return calibration(256, 0.9, {1.0, 0.98, 0.95}); }

    Process::Environment environment() const {
        return {{"HOME", home.path()},
                {"XDG_CONFIG_HOME", ""},
                {"XDG_RUNTIME_DIR", home.path()},
                {"WAYLAND_DISPLAY", ""},
                {"SESSION_MANAGER", ""},
                {"QT_QPA_PLATFORM", ""},
                {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + home.path() + "/no-bus"},
                {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + home.path() + "/no-bus"}};
    }

    void start() {
        nocta = std::make_unique<Process>(std::vector{programFolder() + "/nocta"}, environment(),
                                          output);
    }
    void startAndWaitFor(double brightness) {
        start();
        ASSERT_TRUE(waitForBrightness(brightness)) << contentOf(output);
    }

    /// Whether every output shows the tables of a brightness at 6500 K laid over its factory ramp,
    /// within one 16-bit step.
    bool shows(double brightness) {
        const auto crtcs = client.activeCrtcs();
        return std::ranges::all_of(crtcs, [&](xcb_randr_crtc_t crtc) {
            return isClose(client.ramp(crtc), expected(brightness));
        });
    }
    bool waitForBrightness(double brightness) {
        return waitUntil([&] { return shows(brightness); });
    }

    bool isGivenBack() {
        const auto crtcs = client.activeCrtcs();
        return std::ranges::all_of(
            crtcs, [&](xcb_randr_crtc_t crtc) { return client.ramp(crtc) == factory(); });
    }

    static XClient::Ramp expected(double brightness) {
        // The displays are external, so the tables alone serve the range, down to a faint glow.
        const auto height = 1 - std::min(0.9, 1 - brightness);
        std::array const white = {1.0, (99.4708025861 * std::log(65.0) - 161.1195681661) / 255,
                                  (138.5177312231 * std::log(55.0) - 305.0447927307) / 255};
        auto ramp = factory();
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const auto calibrated = factory()[channel];
            for (std::size_t i = 0; i < 256; ++i) {
                const auto place = height * white[channel] * static_cast<double>(i);
                const auto below = std::min(static_cast<std::size_t>(place), std::size_t{254});
                ramp[channel][i] = static_cast<std::uint16_t>(
                    std::lround(std::lerp(static_cast<double>(calibrated[below]),
                                          static_cast<double>(calibrated[below + 1]),
                                          place - static_cast<double>(below))));
            }
        }
        return ramp;
    }
    static bool isClose(const XClient::Ramp& a, const XClient::Ramp& b) {
        for (std::size_t channel = 0; channel < 3; ++channel) {
            for (std::size_t i = 0; i < 256; ++i) {
                if (std::abs(a[channel][i] - b[channel][i]) > 1) {
                    return false;
                }
            }
        }
        return true;
    }

    /// A process that has ended and that nobody has asked about yet.
    static bool isZombie(pid_t process) {
        const auto stat = contentOf("/proc/" + std::to_string(process) + "/stat");
        return stat.find(") Z ") != std::string::npos;
    }

    /// The guardians that the given process has started and that still run.
    static std::vector<pid_t> guardiansOf(pid_t parent) {
        std::vector<pid_t> found;
        for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
            if (std::isdigit(entry.path().filename().string()[0]) == 0) {
                continue;
            }
            const auto stat = contentOf(entry.path().string() + "/stat");
            const auto afterName = stat.rfind(')');
            if (stat.find("(nocta-guardian)") != std::string::npos &&
                stat.find(") Z ") == std::string::npos &&
                std::stoi(stat.substr(afterName + 4)) == parent) {
                found.push_back(std::stoi(entry.path().filename().string()));
            }
        }
        return found;
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaProcessTest,
                         ::testing::Values(XServer::Kind::xvfb, XServer::Kind::xorgDummy),
                         [](const auto& instance) {
                             return instance.param == XServer::Kind::xvfb ? "Xvfb"
                                                                          : "XorgWithTwoOutputs";
                         });

TEST_P(NoctaProcessTest, KeysDimTheScreenBySixteenthsAndTheSettingFollows) {
    startAndWaitFor(0.75);
    double brightness = 0.75;
    for (int press = 0; press < 14; ++press) {
        client.press(brightnessDownSymbol);
        brightness = std::max(brightness - 0.0625, 0.0);
        ASSERT_TRUE(waitForBrightness(brightness)) << brightness;
    }
    client.press(brightnessUpSymbol);
    ASSERT_TRUE(waitForBrightness(0.0625)); // shows like 0: the faint glow
    client.press(brightnessUpSymbol);
    ASSERT_TRUE(waitForBrightness(0.125));
    EXPECT_EQ(contentOf(settings), "[General]\nunifiedBrightness=0.125\n");
}

TEST_P(NoctaProcessTest, EverySignalThatEndsItGivesTheScreenBack) {
    for (const auto ending : {SIGTERM, SIGINT, SIGHUP}) {
        startAndWaitFor(0.75);
        nocta->signal(ending);
        EXPECT_EQ(nocta->wait(), 0) << contentOf(output);
        EXPECT_TRUE(isGivenBack()) << ending;
    }
}

TEST_P(NoctaProcessTest, DeathGivesTheScreenBackTooAndARestartKnowsTheFactoryRamp) {
    for (const auto death : {SIGKILL, SIGSEGV, SIGABRT}) {
        startAndWaitFor(0.75);
        nocta->signal(death);
        nocta->wait();
        EXPECT_TRUE(waitUntil([&] { return isGivenBack(); })) << death;
    }
    startAndWaitFor(0.75);
    client.press(brightnessDownSymbol);
    ASSERT_TRUE(waitForBrightness(0.6875));
    writeFile(settings, "[General]\nunifiedBrightness=0.4\n");
    nocta->signal(SIGKILL);
    startAndWaitFor(0.4); // at once, while the guardian of the dead one may still be at work
    nocta->signal(SIGTERM);
    EXPECT_EQ(nocta->wait(), 0);
    EXPECT_TRUE(isGivenBack());
}

TEST_P(NoctaProcessTest, QuickRestartsInARowDoNotConfuseTheGuardian) {
    startAndWaitFor(0.75);
    for (int restart = 0; restart < 5; ++restart) {
        nocta->signal(SIGKILL);
        start(); // killed again at whatever point it has reached
    }
    nocta->signal(SIGKILL);
    nocta->wait();
    EXPECT_TRUE(waitUntil([&] { return isGivenBack(); }));
    startAndWaitFor(0.75);
    nocta->signal(SIGTERM);
    nocta->wait();
    EXPECT_TRUE(isGivenBack());
}

TEST_P(NoctaProcessTest, GuardianDoesNotOutliveItsWork) {
    startAndWaitFor(0.75);
    const auto guardians = guardiansOf(nocta->id());
    ASSERT_EQ(guardians.size(), 1U);
    nocta->signal(SIGKILL);
    nocta->wait();
    EXPECT_TRUE(waitUntil([&] { return kill(guardians[0], 0) != 0 || isZombie(guardians[0]); }));

    startAndWaitFor(0.75);
    const auto others = guardiansOf(nocta->id());
    ASSERT_EQ(others.size(), 1U);
    nocta->signal(SIGTERM);
    nocta->wait();
    EXPECT_NE(kill(others[0], 0), 0) << "ended before its program";
}

TEST_P(NoctaProcessTest, DeathTogetherWithTheGuardianIsHealedByTheNextStart) {
    startAndWaitFor(0.75);
    const auto guardians = guardiansOf(nocta->id());
    ASSERT_EQ(guardians.size(), 1U);
    kill(guardians[0], SIGSTOP); // so that it cannot act on the death that it sees
    nocta->signal(SIGKILL);
    nocta->wait();
    kill(guardians[0], SIGKILL);
    EXPECT_TRUE(shows(0.75)) << "nobody was left to give it back";
    startAndWaitFor(0.75);
    ASSERT_TRUE(waitUntil([&] { return guardiansOf(nocta->id()).size() == 1; }));
    client.press(brightnessDownSymbol);
    ASSERT_TRUE(waitForBrightness(0.6875)) << "over the factory ramp, not over the tinted one";
    nocta->signal(SIGTERM);
    EXPECT_EQ(nocta->wait(), 0);
    EXPECT_TRUE(isGivenBack());
}

TEST_P(NoctaProcessTest, GuardianThatDiesIsReplaced) {
    startAndWaitFor(0.75);
    const auto first = guardiansOf(nocta->id());
    ASSERT_EQ(first.size(), 1U);
    kill(first[0], SIGKILL);
    ASSERT_TRUE(waitUntil([&] {
        auto const now = guardiansOf(nocta->id());
        return now.size() == 1 && now[0] != first[0];
    }));
    client.press(brightnessDownSymbol);
    ASSERT_TRUE(waitForBrightness(0.6875));
    nocta->signal(SIGKILL);
    nocta->wait();
    EXPECT_TRUE(waitUntil([&] { return isGivenBack(); }));
}

TEST_P(NoctaProcessTest, SecondStartShowsThePopoverOfTheFirstAndEnds) {
    startAndWaitFor(0.75);
    // No tray on this server: the popover opens by itself a moment after the start.
    ASSERT_TRUE(waitUntil([&] { return client.windowsOfSize(300, 280).size() == 1; }));
    EXPECT_EQ(runToEnd({programFolder() + "/nocta"}, environment()), 0);
    EXPECT_EQ(client.windowsOfSize(300, 280).size(), 1U);
    client.press(0xFF1B); // Escape
    ASSERT_TRUE(waitUntil([&] { return client.windowsOfSize(300, 280).empty(); }));
    EXPECT_EQ(runToEnd({programFolder() + "/nocta"}, environment()), 0);
    EXPECT_TRUE(waitUntil([&] { return client.windowsOfSize(300, 280).size() == 1; }));
    EXPECT_TRUE(shows(0.75));
}

TEST_P(NoctaProcessTest, SliderInThePopoverDimsTheScreen) {
    startAndWaitFor(0.75);
    ASSERT_TRUE(waitUntil([&] { return client.windowsOfSize(300, 280).size() == 1; }));
    client.press(0xFF09); // Tab, to the first control
    client.press(0xFF50); // Home
    ASSERT_TRUE(waitForBrightness(0.0));
    client.press(0xFF57); // End
    ASSERT_TRUE(waitForBrightness(1.0));
}

TEST_P(NoctaProcessTest, SecondStartBeforeThePanelsTimeLeavesThePopoverOpen) {
    startAndWaitFor(0.75);
    EXPECT_EQ(runToEnd({programFolder() + "/nocta"}, environment()), 0);
    ASSERT_TRUE(waitUntil([&] { return client.windowsOfSize(300, 280).size() == 1; }));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(waitUntil([&] { // longer than a panel is waited for
        return std::chrono::steady_clock::now() - start > std::chrono::milliseconds(2500) ||
               client.windowsOfSize(300, 280).empty();
    }));
    EXPECT_EQ(client.windowsOfSize(300, 280).size(), 1U);
}

TEST_P(NoctaProcessTest, StartWhileTheLastOneEndsTakesItsPlace) {
    startAndWaitFor(0.75);
    client.press(brightnessDownSymbol); // makes the settings file
    ASSERT_TRUE(waitForBrightness(0.6875));
    for (const auto* const brightness : {"0.4", "0.5", "0.4", "0.5"}) {
        writeFile(settings, "[General]\nunifiedBrightness=" + std::string(brightness) + "\n");
        const auto last = std::move(nocta);
        last->signal(SIGTERM);
        start();
        EXPECT_EQ(last->wait(), 0);
        ASSERT_TRUE(waitForBrightness(std::stod(brightness))) << contentOf(output);
    }
    nocta->signal(SIGTERM);
    EXPECT_EQ(nocta->wait(), 0);
    EXPECT_TRUE(isGivenBack());
}

TEST_P(NoctaProcessTest, OfTwoStartsAtOnceOneRunsAndTheOtherEnds) {
    for (int round = 0; round < 5; ++round) {
        Process first({programFolder() + "/nocta"}, environment(), output);
        Process second({programFolder() + "/nocta"}, environment(), output);
        pid_t ended = 0;
        ASSERT_TRUE(waitUntil([&] {
            for (const auto* const process : {&first, &second}) {
                if (isZombie(process->id())) {
                    ended = process->id();
                }
            }
            return ended != 0;
        }));
        auto& loser = ended == first.id() ? first : second;
        auto& winner = ended == first.id() ? second : first;
        const auto status = loser.wait();
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        ASSERT_TRUE(waitForBrightness(0.75)) << contentOf(output);
        winner.signal(SIGTERM);
        EXPECT_EQ(winner.wait(), 0);
    }
    EXPECT_TRUE(isGivenBack());
}

TEST_P(NoctaProcessTest, ScreenNumberInTheDisplaysNameMakesNoSecondNocta) {
    startAndWaitFor(0.75);
    auto variables = environment();
    variables["DISPLAY"] = server.display() + ".0";
    EXPECT_EQ(runToEnd({programFolder() + "/nocta"}, variables), 0);
}

TEST_P(NoctaProcessTest, StoredBrightnessIsShownAtTheStart) {
    std::filesystem::create_directories(home.path() + "/.config/nocta");
    writeFile(settings, "[General]\nunifiedBrightness=0.4\n");
    startAndWaitFor(0.4);
}

TEST_P(NoctaProcessTest, DamagedSettingsAreMovedAsideAndTheDefaultsShown) {
    std::filesystem::create_directories(home.path() + "/.config/nocta");
    writeFile(settings, "no settings at all");
    startAndWaitFor(0.75);
    client.press(brightnessDownSymbol);
    ASSERT_TRUE(waitForBrightness(0.6875));
    EXPECT_EQ(contentOf(settings + ".damaged"), "no settings at all");
    EXPECT_EQ(contentOf(settings), "[General]\nunifiedBrightness=0.6875\n");
}

TEST_P(NoctaProcessTest, SettingsFromWhichNothingFollowsHarmNothing) {
    std::filesystem::create_directories(home.path() + "/.config/nocta");
    for (const auto* const value : {"1e308", "-1e308", "nan", "moon", "99999999999999999999"}) {
        writeFile(settings, "[General]\nunifiedBrightness=" + std::string(value) +
                                "\nbreakIntervalMinutes=9223372036854775807\n"
                                "colorTemperatureDay=-9223372036854775808\nmenuBarIcon=7\n");
        const auto shown =
            std::string(value) == "1e308" || std::string(value) == "99999999999999999999" ? 1.0
                                                                                          : 0.0;
        startAndWaitFor(shown);
        nocta->signal(SIGTERM);
        EXPECT_EQ(nocta->wait(), 0);
    }
}

TEST_P(NoctaProcessTest, DyingServerEndsItWithALineAndNoCrash) {
    // The toolkit does not free its connection to a server that has died.
    const auto suppressions = home.path() + "/suppressions";
    writeFile(suppressions, "leak:libX11.so\nleak:libxcb.so\n");
    const auto options = "print_suppressions=0:suppressions=" + suppressions;
    setenv("LSAN_OPTIONS", options.c_str(), 1);
    startAndWaitFor(0.75);
    unsetenv("LSAN_OPTIONS");
    server.kill();
    const auto status = nocta->wait();
    ASSERT_TRUE(WIFEXITED(status)) << "it crashed";
    EXPECT_EQ(WEXITSTATUS(status), 1);
    // Nocta and the toolkit have a connection each; whoever notices first ends the program, and the
    // other may still have its say.
    const auto said = contentOf(output);
    const std::string ours = "nocta: the X server has closed the connection\n";
    const std::string theirs = "The X11 connection broke (error 1). Did the X11 server die?\n";
    EXPECT_TRUE(said == ours || said == theirs || said == ours + theirs) << said;
}

TEST_P(NoctaProcessTest, WithoutADisplayItSaysSoAndFails) {
    auto variables = environment();
    for (const auto* const display : {":4095", "nonsense", ""}) {
        variables["DISPLAY"] = display;
        variables["WAYLAND_DISPLAY"] = *display == '\0' ? "" : "wayland-that-is-gone";
        Process process({programFolder() + "/nocta"}, variables, output);
        const auto status = process.wait();
        ASSERT_TRUE(WIFEXITED(status)) << "it crashed";
        EXPECT_EQ(WEXITSTATUS(status), 1);
        EXPECT_EQ(contentOf(output),
                  "nocta: cannot connect to the display \"" + std::string(display) + "\"\n");
        std::filesystem::remove(output);
    }
}

TEST_P(NoctaProcessTest, EmulatedRandRIsRefusedInOneLine) {
    client.setOutputProperty("RANDR Emulation", 1);
    start();
    ASSERT_TRUE(waitUntil([&] { return client.windowsOfSize(300, 280).size() == 1; }));
    EXPECT_TRUE(isGivenBack()) << "nothing was written";
    EXPECT_NE(contentOf(output).find("gamma is not supported in this Wayland session yet"),
              std::string::npos);
}

using NoctaOnTwoOutputsTest = NoctaProcessTest;
INSTANTIATE_TEST_SUITE_P(Servers, NoctaOnTwoOutputsTest,
                         ::testing::Values(XServer::Kind::xorgDummy));

TEST_P(NoctaOnTwoOutputsTest, UnpluggingAndPluggingHarmsNothing) {
    startAndWaitFor(0.75);
    ASSERT_EQ(client.activeCrtcs().size(), 2U);
    server.unplugSecondOutput();
    client.press(brightnessDownSymbol);
    ASSERT_TRUE(waitForBrightness(0.6875));
    EXPECT_EQ(client.activeCrtcs().size(), 1U);
    server.plugSecondOutput();
    client.press(brightnessDownSymbol);
    ASSERT_TRUE(waitForBrightness(0.625));
    EXPECT_EQ(client.activeCrtcs().size(), 2U);
    nocta->signal(SIGTERM);
    nocta->wait();
    EXPECT_TRUE(isGivenBack());
}

} // namespace
} // namespace nocta
