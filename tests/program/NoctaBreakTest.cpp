#include "support/NoctaProcess.h"
#include "support/XApplication.h"

#include <chrono>
#include <csignal>
#include <optional>
#include <sys/wait.h>
#include <thread>

// Tests breaks in the real program on a private X server, as another client sees them.

namespace nocta {
namespace {

constexpr xcb_keysym_t space = 0x20;
constexpr xcb_keysym_t escape = 0xFF1B;
constexpr xcb_keysym_t enter = 0xFF0D;
constexpr xcb_keysym_t tab = 0xFF09;

class NoctaBreakTest : public NoctaProcess {
protected:
    std::optional<Process> windowManager;

    void SetUp() override {
        NoctaProcess::SetUp();
        client.becomeSystemTray(); // otherwise the popover opens
    }

    void startWindowManager() {
        windowManager.emplace(std::vector<std::string>{"openbox"},
                              Process::Environment{{"HOME", home.path()}}, output);
        ASSERT_TRUE(waitUntil([&] { return client.hasWindowManager(); })) << contentOf(output);
    }

    /// Once the window has keyboard focus, the window manager has finished starting.
    xcb_window_t openFocusedWindow() {
        const auto window = client.openWindow(false);
        EXPECT_TRUE(waitUntil([&] {
            client.setFocus(window);
            return client.focus() == window;
        }));
        return window;
    }

    /// Starts with an interval of 0 minutes, so that a break begins after one second.
    void startWithBreaks(const std::string& seconds = "600") {
        writeFile(settings, neutralSettings("breakTimerEnabled=true\nbreakIntervalMinutes=0\n"
                                            "breakDurationSeconds=" +
                                            seconds + "\n"));
        start();
    }

    /// Whether each output is exactly covered by a window that is above all other windows.
    bool isCovered() {
        auto frames = client.activeFrames();
        const auto windows = client.topWindows();
        if (windows.size() < frames.size()) {
            return false;
        }
        for (auto top = windows.end() - static_cast<std::ptrdiff_t>(frames.size());
             top != windows.end(); ++top) {
            const auto frame =
                std::ranges::find_if(frames, [&](const XClient::TopWindow& candidate) {
                    return candidate.x == top->x && candidate.y == top->y &&
                           candidate.width == top->width && candidate.height == top->height;
                });
            if (!top->isOverrideRedirect || frame == frames.end()) {
                return false;
            }
            frames.erase(frame);
        }
        return true;
    }
    /// Whether no unmanaged window of an output's size is shown.
    bool isUncovered() {
        const auto frames = client.activeFrames();
        return std::ranges::none_of(client.topWindows(), [&](const XClient::TopWindow& window) {
            return window.isOverrideRedirect &&
                   std::ranges::any_of(frames, [&](const XClient::TopWindow& frame) {
                       return frame.width == window.width && frame.height == window.height;
                   });
        });
    }
    bool hasKeyboard() {
        const auto windows = client.topWindows();
        const auto focus = client.focus();
        return std::ranges::any_of(windows, [&](const XClient::TopWindow& window) {
            return window.id == focus && window.isOverrideRedirect;
        });
    }
    /// Waits until the last cover has keyboard focus. Each cover takes focus when it appears.
    void waitForBreak() {
        ASSERT_TRUE(waitUntil([&] {
            return isCovered() && client.focus() == client.topWindows().back().id;
        })) << "covered: "
            << isCovered() << ", keyboard: " << hasKeyboard() << "\n"
            << contentOf(output);
    }
    bool hasTotals(const std::string& totals) {
        return contentOf(settings).find(totals) != std::string::npos;
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaBreakTest, everyServer, serverName);

TEST_P(NoctaBreakTest, BreakCoversEveryOutputAndSpaceSkipsIt) {
    startWindowManager();
    openFocusedWindow();
    startWithBreaks();
    waitForBreak();
    EXPECT_EQ(client.nameOf(client.focus()), "Time for a break — Nocta");
    for (const auto key : {escape, enter, xcb_keysym_t{'a'}}) {
        client.press(key);
    }
    client.press(space);
    ASSERT_TRUE(waitUntil([&] { return isUncovered(); }));
    EXPECT_TRUE(hasTotals(R"(\"skippedBreaks\":1,\"snoozedBreaks\":0)"))
        << "the other keys should do nothing: " << contentOf(settings);
}

TEST_P(NoctaBreakTest, FocusReturnsToThePreviousWindow) {
    startWindowManager();
    const auto other = openFocusedWindow();
    startWithBreaks();
    waitForBreak();
    client.press(tab);
    client.press(tab);
    client.press(enter); // presses the second button, which snoozes the break
    EXPECT_TRUE(waitUntil([&] { return client.focus() == other; }));
    EXPECT_TRUE(waitUntil([&] { return isUncovered(); }));
    EXPECT_TRUE(hasTotals(R"(\"snoozedBreaks\":1)")) << contentOf(settings);
}

TEST_P(NoctaBreakTest, MeetingStopsTheCountdownEvenAfterItEnds) {
    startWindowManager();
    openFocusedWindow();
    XApplication zoom("zoom", "zoom");
    const auto meeting = zoom.open();
    zoom.activate(meeting);
    ASSERT_TRUE(waitUntil([&] { return zoom.rootNumber("_NET_ACTIVE_WINDOW") == meeting; }));
    startWithBreaks();
    ASSERT_TRUE(waitForBrightness(0.75));
    const auto start = std::chrono::steady_clock::now();
    const auto runFor = [&](std::chrono::milliseconds time) {
        waitUntil(
            [&] { return std::chrono::steady_clock::now() - start > time || !isUncovered(); });
    };
    runFor(std::chrono::milliseconds(2000)); // the break would start after one second
    EXPECT_TRUE(isUncovered());
    zoom.close(meeting);
    runFor(std::chrono::milliseconds(4000));
    EXPECT_TRUE(isUncovered());
}

TEST_P(NoctaBreakTest, BreakEndsAfterItsDuration) {
    startWithBreaks("1");
    waitForBreak();
    EXPECT_TRUE(waitUntil([&] { return isUncovered(); }));
    EXPECT_TRUE(hasTotals(R"(\"completedBreaks\":1)")) << contentOf(settings);
}

TEST_P(NoctaBreakTest, FullScreenWindowIsCovered) {
    startWindowManager();
    const auto frame = client.activeFrames().at(0);
    client.openWindow(true);
    ASSERT_TRUE(
        waitUntil([&] { return client.windowsOfSize(frame.width, frame.height).size() == 1; }));
    startWithBreaks();
    waitForBreak();
    const auto before = client.windowsOfSize(frame.width, frame.height).size();
    // A window that opens during the break takes focus briefly, and should end up below the cover.
    client.openWindow(true);
    ASSERT_TRUE(
        waitUntil([&] { return client.windowsOfSize(frame.width, frame.height).size() > before; }));
    EXPECT_TRUE(waitUntil([&] { return isCovered() && hasKeyboard(); }));
    client.press(space);
    EXPECT_TRUE(waitUntil([&] { return isUncovered(); }));
}

TEST_P(NoctaBreakTest, CoverClosesWithoutAWindowManagerAndAfterItExits) {
    startWithBreaks();
    waitForBreak();
    startWindowManager();
    client.openWindow(false); // once it is shown, the window manager has started
    waitForBreak();
    windowManager.reset();
    ASSERT_TRUE(waitUntil([&] { return hasKeyboard(); }));
    client.press(space);
    EXPECT_TRUE(waitUntil([&] { return isUncovered(); }));
}

TEST_P(NoctaBreakTest, KillDuringABreakClosesTheWindowsAndKeepsEarlierTotals) {
    startWithBreaks();
    waitForBreak();
    client.press(space);
    ASSERT_TRUE(waitUntil([&] { return isUncovered(); }));
    waitForBreak();
    const auto before = contentOf(settings);
    nocta->signal(SIGKILL);
    nocta->wait();
    EXPECT_TRUE(waitUntil([&] { return isUncovered() && isGivenBack(); }));
    EXPECT_EQ(contentOf(settings), before);
    start();
    waitForBreak();
    client.press(space);
    EXPECT_TRUE(waitUntil([&] { return hasTotals(R"(\"skippedBreaks\":2)"); }));
}

TEST_P(NoctaBreakTest, QuitDuringABreakClosesTheWindows) {
    startWithBreaks();
    waitForBreak();
    nocta->signal(SIGTERM);
    EXPECT_EQ(nocta->wait(), 0);
    EXPECT_TRUE(isUncovered());
}

/// Simulates a user who types words at 90 ms per key.
class NoctaTypingTest : public NoctaBreakTest {
protected:
    using Clock = std::chrono::steady_clock;

    void SetUp() override {
        NoctaBreakTest::SetUp();
        startWindowManager();
        openFocusedWindow();
        startWithBreaks();
    }
    /// Types until a cover appears, and then eight more keys. Returns false if the machine was so
    /// busy that the program may have seen a pause in the typing.
    bool typeIntoCover() {
        bool isSteady = true;
        auto last = Clock::now();
        int keysInCover = 0;
        for (int key = 0; key < 1000 && keysInCover < 8; ++key) {
            const auto before = Clock::now();
            client.press(key % 3 == 2 ? space : key % 7 == 6 ? enter : xcb_keysym_t{'a'});
            isSteady = isSteady && Clock::now() - last < std::chrono::milliseconds(450);
            last = before;
            std::this_thread::sleep_for(std::chrono::milliseconds(90));
            keysInCover += hasKeyboard() ? 1 : 0;
        }
        EXPECT_EQ(keysInCover, 8);
        return isSteady;
    }
    void pauseAndPressSpace() {
        std::this_thread::sleep_for(std::chrono::milliseconds(600));
        client.press(space);
        ASSERT_TRUE(waitUntil([&] { return isUncovered(); }));
    }
    int total(const std::string& outcome) {
        const auto text = contentOf(settings);
        const auto name = outcome + R"(Breaks\":)";
        const auto found = text.find(name);
        return found == std::string::npos ? 0 : std::stoi(text.substr(found + name.size()));
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaTypingTest, ::testing::Values(XServer::Kind::xvfb),
                         serverName);

TEST_P(NoctaTypingTest, ContinuedTypingIsDiscardedAndSpaceAfterAPauseSkips) {
    int breaks = 0;
    for (int round = 0; round < 50 && breaks < 10; ++round) {
        const auto skipped = total("skipped");
        const auto isSteady = typeIntoCover();
        if (isSteady) {
            ASSERT_TRUE(isCovered()) << round;
            ASSERT_EQ(total("skipped"), skipped) << round;
            ++breaks;
        }
        ASSERT_NO_FATAL_FAILURE(pauseAndPressSpace()) << round;
        if (isSteady) {
            ASSERT_TRUE(waitUntil([&] { return total("skipped") == skipped + 1; })) << round;
        }
    }
    EXPECT_EQ(breaks, 10);
    EXPECT_EQ(total("snoozed"), 0) << "Enter should do nothing";
}

TEST_P(NoctaTypingTest, MouseClicksWorkWhileTheUserTypes) {
    typeIntoCover();
    const auto frame = client.activeFrames().at(0);
    for (int y = frame.y + frame.height; y > frame.y && total("snoozed") == 0; y -= 10) {
        client.press('a');
        client.click(frame.x + frame.width / 2 + 60, y); // moves up until it reaches "Snooze 5 min"
    }
    EXPECT_TRUE(waitUntil([&] { return total("snoozed") == 1; })) << contentOf(settings);
}

/// Tests scale factors that do not divide the sizes of the outputs.
class NoctaBreakScaledTest : public NoctaBreakTest {
protected:
    void SetUp() override {
        NoctaBreakTest::SetUp();
        server.xrandr({"--newmode", "odd", "85.5", "1366", "1436", "1579", "1792", "768", "771",
                       "774", "798"});
        server.xrandr({"--newmode", "hd", "148.5", "1920", "2008", "2052", "2200", "1080", "1084",
                       "1089", "1125"});
        server.xrandr({"--addmode", "DUMMY1", "odd"});
        server.xrandr({"--addmode", "DUMMY2", "hd"});
        server.xrandr({"--output", "DUMMY1", "--mode", "odd", "--pos", "1280x0"});
        server.xrandr({"--output", "DUMMY2", "--mode", "hd", "--pos", "101x769"});
    }
    void TearDown() override { unsetenv("QT_SCALE_FACTOR"); }
    /// If Qt does not paint the last pixel, the server paints it in the same color.
    void expectBackdropAtEveryCorner() {
        constexpr std::uint32_t backdrop = 0xB3000000; // black with alpha 0.7
        int covers = 0;
        for (const auto& window : client.topWindows()) {
            if (!window.isOverrideRedirect || window.width < 1000) {
                continue;
            }
            ++covers;
            for (const auto x : {0, window.width - 1}) {
                for (const auto y : {0, window.height - 1}) {
                    EXPECT_TRUE(waitUntil([&] {
                        return client.translucentPixel(window.id, static_cast<std::int16_t>(x),
                                                       static_cast<std::int16_t>(y)) == backdrop;
                    })) << x
                        << " " << y;
                }
            }
        }
        EXPECT_EQ(covers, 3);
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaBreakScaledTest, ::testing::Values(XServer::Kind::xorgDummy),
                         serverName);

TEST_P(NoctaBreakScaledTest, CoversMatchTheOutputsExactlyAtEveryScaleFactor) {
    for (const auto* const factor : {"1.25", "1.5", "1.75", "2"}) {
        SCOPED_TRACE(factor);
        setenv("QT_SCALE_FACTOR", factor, 1);
        startWithBreaks();
        waitForBreak();
        expectBackdropAtEveryCorner();
        nocta->signal(SIGTERM);
        EXPECT_EQ(nocta->wait(), 0);
    }
}

TEST_P(NoctaBreakScaledTest, CoversMatchTheOutputsExactlyWithAnotherFontResolution) {
    XApplication desktop;
    desktop.setText(desktop.root(), "RESOURCE_MANAGER", "Xft.dpi:\t168\n", "STRING");
    startWithBreaks();
    waitForBreak();
    expectBackdropAtEveryCorner();
}

class NoctaBreakOnTwoOutputsTest : public NoctaBreakTest {};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaBreakOnTwoOutputsTest,
                         ::testing::Values(XServer::Kind::xorgDummy), serverName);

TEST_P(NoctaBreakOnTwoOutputsTest, DisplaysCanBePluggedAndUnpluggedDuringABreak) {
    startWithBreaks();
    waitForBreak();
    server.unplugSecondOutput();
    client.press(space);
    ASSERT_TRUE(waitUntil([&] { return isUncovered(); }));
    waitForBreak();
    server.plugSecondOutput();
    client.press(space);
    ASSERT_TRUE(waitUntil([&] { return hasTotals(R"(\"skippedBreaks\":2)"); }));
    waitForBreak();
    EXPECT_EQ(client.activeFrames().size(), 2U);
}

} // namespace
} // namespace nocta
