#include "support/NoctaProcess.h"
#include "support/XApplication.h"

#include <chrono>
#include <csignal>
#include <optional>
#include <sys/wait.h>

// Breaks of the program itself on a private X server, as another client sees them.

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
        client.becomeSystemTray(); // else the popover opens
    }

    void startWindowManager() {
        windowManager.emplace(std::vector<std::string>{"openbox"},
                              Process::Environment{{"HOME", home.path()}}, output);
        ASSERT_TRUE(waitUntil([&] { return client.hasWindowManager(); })) << contentOf(output);
    }

    /// When it has the keyboard the window manager has finished its start as well.
    xcb_window_t openFocusedWindow() {
        const auto window = client.openWindow(false);
        EXPECT_TRUE(waitUntil([&] {
            client.setFocus(window);
            return client.focus() == window;
        }));
        return window;
    }

    /// With an interval of no minutes a break begins after a second of counting.
    void startWithBreaks(const std::string& seconds = "600") {
        writeFile(settings, neutralSettings("breakTimerEnabled=true\nbreakIntervalMinutes=0\n"
                                            "breakDurationSeconds=" +
                                            seconds + "\n"));
        start();
    }

    /// The windows that lie exactly over an output each, and above everything else.
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
    /// Whether any window of the size of an output is shown that no window manager manages.
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
    void waitForBreak() {
        ASSERT_TRUE(waitUntil([&] { return isCovered() && hasKeyboard(); }))
            << "covered: " << isCovered() << ", keyboard: " << hasKeyboard() << "\n"
            << contentOf(output);
    }
    bool hasTotals(const std::string& totals) {
        return contentOf(settings).find(totals) != std::string::npos;
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaBreakTest, everyServer, serverName);

TEST_P(NoctaBreakTest, CountdownEndsInWindowsOverEveryOutputAndSpaceSkips) {
    startWindowManager();
    openFocusedWindow();
    startWithBreaks();
    waitForBreak();
    for (const auto key : {escape, enter, xcb_keysym_t{'a'}}) {
        client.press(key);
    }
    client.press(space);
    ASSERT_TRUE(waitUntil([&] { return isUncovered(); }));
    EXPECT_TRUE(hasTotals(R"(\"skippedBreaks\":1,\"snoozedBreaks\":0)"))
        << "the other keys have done nothing: " << contentOf(settings);
}

TEST_P(NoctaBreakTest, KeyboardIsGivenBackToTheWindowThatHadIt) {
    startWindowManager();
    const auto other = openFocusedWindow();
    startWithBreaks();
    waitForBreak();
    client.press(tab);
    client.press(tab);
    client.press(enter); // on the second button, which puts the break off
    EXPECT_TRUE(waitUntil([&] { return client.focus() == other; }));
    EXPECT_TRUE(isUncovered());
    EXPECT_TRUE(hasTotals(R"(\"snoozedBreaks\":1)")) << contentOf(settings);
}

TEST_P(NoctaBreakTest, MeetingInFrontHoldsTheCountdownEvenAfterItsEnd) {
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
    runFor(std::chrono::milliseconds(2000)); // the break would come after one second
    EXPECT_TRUE(isUncovered());
    zoom.close(meeting);
    runFor(std::chrono::milliseconds(4000));
    EXPECT_TRUE(isUncovered());
}

TEST_P(NoctaBreakTest, BreakEndsByItself) {
    startWithBreaks("1");
    waitForBreak();
    EXPECT_TRUE(waitUntil([&] { return isUncovered(); }));
    EXPECT_TRUE(hasTotals(R"(\"completedBreaks\":1)")) << contentOf(settings);
}

TEST_P(NoctaBreakTest, FullScreenWindowIsCoveredToo) {
    startWindowManager();
    const auto frame = client.activeFrames().at(0);
    client.openWindow(true);
    ASSERT_TRUE(
        waitUntil([&] { return client.windowsOfSize(frame.width, frame.height).size() == 1; }));
    startWithBreaks();
    waitForBreak();
    const auto before = client.windowsOfSize(frame.width, frame.height).size();
    client.openWindow(true);    // one that comes during the break lies below as well
    ASSERT_TRUE(waitUntil([&] { // and has had the keyboard for a moment
        return client.windowsOfSize(frame.width, frame.height).size() > before;
    }));
    EXPECT_TRUE(waitUntil([&] { return isCovered() && hasKeyboard(); }));
    client.press(space);
    EXPECT_TRUE(waitUntil([&] { return isUncovered(); }));
}

TEST_P(NoctaBreakTest, WithoutAWindowManagerOrWhenItGoesNothingStaysOnScreen) {
    startWithBreaks();
    waitForBreak();
    startWindowManager();
    client.openWindow(false); // managed, so the window manager has finished its start
    waitForBreak();
    windowManager.reset();
    ASSERT_TRUE(waitUntil([&] { return hasKeyboard(); }));
    client.press(space);
    EXPECT_TRUE(waitUntil([&] { return isUncovered(); }));
}

TEST_P(NoctaBreakTest, DeathDuringABreakLeavesNothingOnScreenAndTheTotalsOfTheLastEndedBreak) {
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

TEST_P(NoctaBreakTest, QuitDuringABreakTakesTheWindowsAway) {
    startWithBreaks();
    waitForBreak();
    nocta->signal(SIGTERM);
    EXPECT_EQ(nocta->wait(), 0);
    EXPECT_TRUE(isUncovered());
}

class NoctaBreakOnTwoOutputsTest : public NoctaBreakTest {};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaBreakOnTwoOutputsTest,
                         ::testing::Values(XServer::Kind::xorgDummy), serverName);

TEST_P(NoctaBreakOnTwoOutputsTest, DisplaysMayComeAndGoDuringABreak) {
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
