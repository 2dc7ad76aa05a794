#include "support/NoctaProcess.h"

#include "support/EventLoop.h"
#include "support/PrivateBus.h"
#include "support/SettingsPortal.h"

#include <chrono>
#include <csignal>
#include <sys/wait.h>

namespace nocta {
namespace {

class NoctaProcessTest : public NoctaProcess {
protected:
    /// Waits for the content, because the program writes the file after it updates the screen.
    bool waitForSettings(const std::string& content) {
        return waitUntil([&] { return contentOf(settings) == content; });
    }
    /// Whether there is a popover that is higher than usual, because notes say what is missing.
    static bool showsPopoverWithNotes(XClient& observer) {
        return !observer
                    .windows([](const auto& window) {
                        return window.width == 300 && window.height > 280;
                    })
                    .empty();
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaProcessTest, everyServer, serverName);

TEST_P(NoctaProcessTest, KeysDimTheScreenBySixteenthsAndTheSettingFollows) {
    startAndWaitFor(0.75);
    double brightness = 0.75;
    for (int press = 0; press < 14; ++press) {
        client.press(brightnessDownSymbol);
        brightness = std::max(brightness - 0.0625, 0.0);
        ASSERT_TRUE(waitForBrightness(brightness)) << brightness;
    }
    client.press(brightnessUpSymbol);
    ASSERT_TRUE(waitForBrightness(0.0625)); // shows the same faint glow as 0
    client.press(brightnessUpSymbol);
    ASSERT_TRUE(waitForBrightness(0.125));
    EXPECT_TRUE(waitForSettings(neutralSettings("unifiedBrightness=0.125\n")));
}

TEST_P(NoctaProcessTest, SecondStartShowsThePopoverOfTheFirstAndExits) {
    startAndWaitFor(0.75);
    // There is no tray on this server, so the popover opens a moment after launch.
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
    client.press(0xFF50); // Home; the first control has keyboard focus
    ASSERT_TRUE(waitForBrightness(0.0));
    client.press(0xFF57); // End
    ASSERT_TRUE(waitForBrightness(1.0));
}

TEST_P(NoctaProcessTest, WindowFollowsTheUsersColorScheme) {
    const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
    SettingsPortal portal(bus);
    auto& scheme = portal.settings["org.freedesktop.appearance"]["color-scheme"];
    scheme = 1U;
    auto variables = environment();
    variables["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    nocta = std::make_unique<Process>(std::vector{programFolder() + "/nocta"}, variables, output);
    const auto levelIsIn = [&](std::uint32_t least, std::uint32_t most) {
        const auto windows = client.topWindows(); // the popover is open, because there is no tray
        const auto blue = windows.empty() ? 256 : client.pixel(windows.back().id, 4, 4) & 0xFF;
        return least <= blue && blue <= most;
    };
    ASSERT_TRUE(serveUntil([&] { return levelIsIn(0x20, 0x30); })) << contentOf(output);
    scheme = 2U;
    portal.emitSettingChanged();
    ASSERT_TRUE(serveUntil([&] { return levelIsIn(0xE0, 0xFF); })) << contentOf(output);
    scheme = 1U;
    portal.emitSettingChanged();
    EXPECT_TRUE(serveUntil([&] { return levelIsIn(0x20, 0x30); }));
}

TEST_P(NoctaProcessTest, SecondStartDuringTheWaitForAPanelLeavesThePopoverOpen) {
    startAndWaitFor(0.75);
    EXPECT_EQ(runToEnd({programFolder() + "/nocta"}, environment()), 0);
    ASSERT_TRUE(waitUntil([&] { return client.windowsOfSize(300, 280).size() == 1; }));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(waitUntil([&] { // 2.5 seconds is longer than the program waits for a panel
        return std::chrono::steady_clock::now() - start > std::chrono::milliseconds(2500) ||
               client.windowsOfSize(300, 280).empty();
    }));
    EXPECT_EQ(client.windowsOfSize(300, 280).size(), 1U);
}

TEST_P(NoctaProcessTest, InstanceStartedWhileTheLastOneQuitsTakesOver) {
    startAndWaitFor(0.75);
    client.press(brightnessDownSymbol); // creates the settings file
    ASSERT_TRUE(waitForSettings(neutralSettings("unifiedBrightness=0.6875\n")));
    for (const auto* const brightness : {"0.4", "0.5", "0.4", "0.5"}) {
        writeFile(settings, neutralSettings("unifiedBrightness=" + std::string(brightness) + "\n"));
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

TEST_P(NoctaProcessTest, OneOfTwoSimultaneousInstancesExits) {
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

bool canConnect(const std::string& display) {
    auto* const connection = xcb_connect(display.c_str(), nullptr);
    const auto isConnected = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return isConnected;
}

TEST_P(NoctaProcessTest, OtherNamesOfTheDisplayDoNotStartASecondInstance) {
    startAndWaitFor(0.75);
    auto variables = environment();
    std::vector<std::string> names{server.display() + ".0"};
    // Newer versions of libxcb interpret "unix:" as the prefix of a socket path.
    if (const auto name = "unix" + server.display(); canConnect(name)) {
        names.insert(names.end(), {name, name + ".0"});
    }
    for (const auto& name : names) {
        variables["DISPLAY"] = name;
        EXPECT_EQ(runToEnd({programFolder() + "/nocta"}, variables), 0) << name;
    }
    EXPECT_TRUE(shows(0.75));
}

TEST_P(NoctaProcessTest, OnlyOneInstanceRunsWithoutARuntimeFolder) {
    // Covers a program that the session did not start, and a folder that other users can write to.
    const auto shared = home.path() + "/shared";
    std::filesystem::create_directory(shared);
    std::filesystem::permissions(shared, std::filesystem::perms::all);
    auto variables = environment();
    const auto relative = std::filesystem::relative(home.path()).string() + "/relative";
    for (const auto& runtime : {std::string(), relative, home.path() + "/missing", shared}) {
        variables["XDG_RUNTIME_DIR"] = runtime;
        nocta =
            std::make_unique<Process>(std::vector{programFolder() + "/nocta"}, variables, output);
        ASSERT_TRUE(waitForBrightness(0.75)) << contentOf(output);
        EXPECT_EQ(runToEnd({programFolder() + "/nocta"}, variables), 0);
        EXPECT_TRUE(std::filesystem::is_empty(shared));
        nocta->signal(SIGTERM);
        EXPECT_EQ(nocta->wait(), 0);
        EXPECT_TRUE(waitUntil([&] { return isGivenBack(); }));
    }
}

TEST_P(NoctaProcessTest, FilesOfAKilledProcessDoNotBlockTheNextStart) {
    for (int round = 0; round < 3; ++round) {
        startAndWaitFor(0.75);
        nocta->signal(SIGKILL);
        nocta->wait();
        ASSERT_TRUE(waitUntil([&] { return isGivenBack(); }));
    }
    startAndWaitFor(0.75);
    EXPECT_EQ(runToEnd({programFolder() + "/nocta"}, environment()), 0);
}

TEST_P(NoctaProcessTest, StoredBrightnessIsShownOnLaunch) {
    writeFile(settings, neutralSettings("unifiedBrightness=0.4\n"));
    startAndWaitFor(0.4);
}

TEST_P(NoctaProcessTest, WarmthIsAppliedToTheCalibration) {
    writeFile(settings, "[General]\nautoWarmthEnabled=false\nwarmthLevel=1\n");
    start();
    const auto warm = expected(0.75, 2700);
    EXPECT_TRUE(waitUntil([&] { return isClose(client.ramp(client.activeCrtcs().at(0)), warm); }))
        << contentOf(output);
}

TEST_P(NoctaProcessTest, DamagedSettingsAreMovedAsideAndReadablePartsAreUsed) {
    writeFile(settings, neutralSettings("no settings at all"));
    startAndWaitFor(0.75);
    client.press(brightnessDownSymbol);
    ASSERT_TRUE(waitForBrightness(0.6875));
    EXPECT_TRUE(waitForSettings(neutralSettings("unifiedBrightness=0.6875\n")));
    EXPECT_EQ(contentOf(settings + ".damaged"), neutralSettings("no settings at all"));
}

TEST_P(NoctaProcessTest, InvalidSettingsDoNotStopTheProgram) {
    for (const auto* const value : {"1e308", "-1e308", "nan", "moon", "99999999999999999999"}) {
        writeFile(settings,
                  neutralSettings("unifiedBrightness=" + std::string(value) +
                                  "\nbreakDurationSeconds=9223372036854775807\n"
                                  "colorTemperatureDay=-9223372036854775808\nmenuBarIcon=7\n"));
        const auto shown =
            std::string(value) == "1e308" || std::string(value) == "99999999999999999999" ? 1.0
                                                                                          : 0.0;
        startAndWaitFor(shown);
        nocta->signal(SIGTERM);
        EXPECT_EQ(nocta->wait(), 0);
    }
}

TEST_P(NoctaProcessTest, FatalValueIsReportedWithItsFileAndTheScreenIsGivenBack) {
    struct Row {
        std::string content;
        std::string named;
    };
    // Without a tray the popover opens, so the program has to show every value.
    for (const auto& [content, named] :
         {Row{"breakIntervalMinutes=9223372036854775807\n",
              "breakIntervalMinutes is 9223372036854775807"},
          Row{"breakIntervalMinutes=-9223372036854775808\n",
              "breakIntervalMinutes is -9223372036854775808"},
          Row{"breakIntervalMinutes=153722867280912930\n", // in seconds, rounds up to 2^63
              "breakIntervalMinutes is 153722867280912930"},
          Row{"breakIntervalMinutes=0\nbreakDurationSeconds=9223372036854775807\n",
              "breakDurationSeconds is 9223372036854775807"},
          Row{"unifiedBrightness=1e300\n", "unifiedBrightness is 1e+300"},
          Row{"unifiedBrightness=-99999999999999999999\n", "unifiedBrightness is -1e+20"},
          Row{"warmthLevel=1e300\n", "warmthLevel is 1e+300"}}) {
        writeFile(settings, neutralSettings(content));
        start();
        const auto status = nocta->wait();
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT) << content;
        const auto said = contentOf(output);
        const auto last = said.substr(said.rfind('\n', said.size() - 2) + 1);
        EXPECT_TRUE(last.starts_with("nocta: stopped: ")) << said;
        EXPECT_NE(last.find(named), std::string::npos) << said;
        EXPECT_TRUE(last.ends_with("; correct it in " + settings + "\n")) << said;
        EXPECT_TRUE(waitUntil([&] { return isGivenBack(); })) << content;
        std::filesystem::remove(output);
    }
}

TEST_P(NoctaProcessTest, ProgramWithoutADisplayPrintsAnErrorAndFails) {
    auto variables = environment();
    for (const auto* const display : {":4095", "nonsense", ""}) {
        variables["DISPLAY"] = display;
        variables["WAYLAND_DISPLAY"] = *display == '\0' ? "" : "wayland-that-is-gone";
        Process process({programFolder() + "/nocta"}, variables, output);
        const auto status = process.wait();
        ASSERT_TRUE(WIFEXITED(status)) << "the program should not crash";
        EXPECT_EQ(WEXITSTATUS(status), 1);
        EXPECT_EQ(contentOf(output),
                  "nocta: cannot connect to the display \"" + std::string(display) + "\"\n");
        std::filesystem::remove(output);
    }
}

TEST_P(NoctaProcessTest, ServerWithoutRampsIsReportedInOneLineAndInThePopover) {
    const XServer bare(XServer::Kind::xvfb, {"-extension", "RANDR"}); // becomes DISPLAY
    XClient onBare;
    start();
    EXPECT_TRUE(waitUntil([&] { return showsPopoverWithNotes(onBare); }));
    const auto said = contentOf(output);
    const auto line = said.find("cannot be dimmed\n");
    EXPECT_NE(line, std::string::npos) << said;
    EXPECT_EQ(said.find("cannot be dimmed\n", line + 1), std::string::npos) << said;
}

TEST_P(NoctaProcessTest, EmulatedRandRIsReportedInOneLine) {
    client.setOutputProperty("RANDR Emulation", {1});
    start();
    ASSERT_TRUE(waitUntil([&] { return showsPopoverWithNotes(client); }));
    EXPECT_TRUE(isGivenBack()) << "the program should not write the ramp";
    EXPECT_NE(contentOf(output).find("gamma is not supported in this Wayland session yet"),
              std::string::npos);
    EXPECT_TRUE(waitUntil([&] {
        return contentOf(output).find("Failed to create event tap\n") != std::string::npos;
    })) << "the event tap should fail, because keys arrive only while an X window has focus";
}

class NoctaOnTwoOutputsTest : public NoctaProcess {};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaOnTwoOutputsTest,
                         ::testing::Values(XServer::Kind::xorgDummy), serverName);

TEST_P(NoctaOnTwoOutputsTest, KeysKeepWorkingAfterADisplayIsUnpluggedAndPluggedIn) {
    startAndWaitFor(0.75);
    ASSERT_EQ(client.activeCrtcs().size(), 2U);
    server.unplugSecondOutput();
    client.press(brightnessDownSymbol);
    ASSERT_TRUE(waitForBrightness(0.6875));
    EXPECT_EQ(client.activeCrtcs().size(), 1U);
    server.plugSecondOutput();
    client.press(brightnessDownSymbol);
    // The program handles a display change at the end of the run-loop turn that reports it, and the
    // key may arrive in the same turn.
    ASSERT_TRUE(waitUntil(
        [&] { return isClose(client.ramp(client.activeCrtcs().at(0)), expected(0.625)); }));
    client.press(brightnessDownSymbol);
    ASSERT_TRUE(waitForBrightness(0.5625));
    EXPECT_EQ(client.activeCrtcs().size(), 2U);
    nocta->signal(SIGTERM);
    nocta->wait();
    EXPECT_TRUE(isGivenBack());
}

} // namespace
} // namespace nocta
