#include "support/NoctaWithPanel.h"
#include "support/XApplication.h"

#include <csignal>
#include <sys/wait.h>

// In these tests a simulated user with a window manager and a panel uses the program's windows, and
// another client reads the ramps.

namespace nocta {
namespace {

class NoctaFaceTest : public NoctaWithPanel {};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaFaceTest, everyServer, serverName);

TEST_P(NoctaFaceTest, DraggingInThePopoverOfTheIconSetsTheBrightness) {
    startAndWaitFor(0.75);
    const auto popover = openPopover();
    const auto screen = client.activeFrames().at(0);
    EXPECT_GE(popover.x, screen.x);
    EXPECT_LE(popover.x + popover.width, screen.x + screen.width);
    EXPECT_GE(popover.y, screen.y);
    EXPECT_LE(popover.y + popover.height, screen.y + screen.height)
        << "the popover should be fully on screen";

    // The track of the slider is 250 points long and begins 25 points from the left edge.
    const auto knob = [&](double brightness) { return popover.x + 25 + 250 * brightness; };
    const auto height = popover.y + 44;
    client.moveTo(static_cast<int>(knob(0.75)), height);
    client.holdButton(left);
    for (const auto brightness : {0.7, 0.6, 0.5, 0.4, 0.3}) {
        client.moveTo(static_cast<int>(knob(brightness)), height);
        ASSERT_TRUE(waitForBrightness(brightness)) << brightness;
    }
    client.releaseButton(left);
    EXPECT_TRUE(waitUntil([&] { return stored("unifiedBrightness") == "0.3"; }))
        << contentOf(settings);

    client.press(escape);
    EXPECT_TRUE(popoverIsGone());
    EXPECT_TRUE(shows(0.3));
}

TEST_P(NoctaFaceTest, ClickElsewhereAndOnTheIconClosesThePopover) {
    startAndWaitFor(0.75);
    openPopover();
    client.click(5, 5);
    ASSERT_TRUE(popoverIsGone());
    openPopover();
    clickIcon();
    EXPECT_TRUE(popoverIsGone());
}

TEST_P(NoctaFaceTest, FooterButtonsOpenThePreferencesAndQuit) {
    startAndWaitFor(0.75);
    auto popover = openPopover();
    client.click(popover.x + 43, popover.y + 262);
    waitFor("Preferences — Nocta");
    EXPECT_TRUE(popoverIsGone());
    popover = openPopover();
    client.click(popover.x + 258, popover.y + 262);
    const auto status = nocta->wait();
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << contentOf(output);
    EXPECT_TRUE(isGivenBack());
}

TEST_P(NoctaFaceTest, RightClickOpensAMenuThatQuits) {
    startAndWaitFor(0.75);
    clickIcon(right);
    ASSERT_TRUE(waitUntil([&] {
        return !client
                    .windows([](const Window& window) {
                        return window.isOverrideRedirect && window.width > 80 &&
                               window.height > 100 && window.width < 300;
                    })
                    .empty();
    }));
    client.press(up); // moves to the last item
    client.press(enter);
    const auto status = nocta->wait();
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << contentOf(output);
    EXPECT_TRUE(isGivenBack());
}

TEST_P(NoctaFaceTest, OnboardingCanBeCompletedWithTheKeyboard) {
    writeFile(settings, "[General]\nautoWarmthEnabled=false\nwarmthLevel=0\n");
    startAndWaitFor(0.75); // the services run before onboarding ends
    const auto window = waitFor("Welcome to Nocta");
    EXPECT_EQ(window.width, 500);
    EXPECT_EQ(window.height, 580);
    // Presses a key and waits for its effect, as a user would.
    const auto press = [&](xcb_keysym_t key) {
        const auto before = client.picture(window);
        client.press(key);
        ASSERT_TRUE(waitUntil([&] { return client.picture(window) != before; })) << key;
    };
    press(space); // presses "Continue", which has keyboard focus
    press(space);
    press(tab); // moves to the cards
    press(down);
    press(space);
    EXPECT_TRUE(waitUntil([&] {
        return isClose(client.ramp(client.activeCrtcs().at(0)), expected(0.4, 3460));
    })) << contentOf(settings);
    press(tab); // moves to the adjustments; the next two move to "Back" and "Continue"
    press(tab);
    press(tab);
    press(space);
    EXPECT_EQ(stored("isFirstLaunch"), "");
    client.press(space);
    EXPECT_TRUE(isGone("Welcome to Nocta"));
    EXPECT_TRUE(waitUntil([&] { return stored("isFirstLaunch") == "false"; }));

    nocta->signal(SIGTERM);
    nocta->wait();
    start();
    waitForIcon();
    EXPECT_FALSE(find("Welcome to Nocta").has_value());
}

TEST_P(NoctaFaceTest, OnboardingCanBeCompletedOnASmallScreen) {
    writeFile(settings, "[General]\nautoWarmthEnabled=false\nwarmthLevel=0\n");
    auto variables = environment();
    variables["QT_SCALE_FACTOR"] = "2";
    nocta = std::make_unique<Process>(std::vector{programFolder() + "/nocta"}, variables, output);
    const auto window = waitFor("Welcome to Nocta");
    const auto screen = client.activeFrames().at(0);
    EXPECT_GE(window.y, screen.y);
    EXPECT_LE(window.y + window.height, find("tint2").value().y)
        << "the panel should not cover the window";
    for (int step = 0; step < 4; ++step) {
        const auto before = client.picture(window);
        client.click(window.x + window.width - 120, window.y + window.height - 50);
        ASSERT_TRUE(waitUntil([&] {
            return !find("Welcome to Nocta") || client.picture(window) != before;
        })) << step;
    }
    EXPECT_TRUE(isGone("Welcome to Nocta"));
}

TEST_P(NoctaFaceTest, PopoverDoesNotCoverThePanel) {
    const auto screen = client.activeFrames().at(0);
    const auto bottom = screen.y + screen.height - 100;
    XApplication dock("dock", "Dock"); // a small window that reserves a tall edge
    const auto window = dock.make({static_cast<double>(screen.x), bottom + 0.0, 10, 10});
    dock.setNumbers(window, "_NET_WM_WINDOW_TYPE", {dock.atom("_NET_WM_WINDOW_TYPE_DOCK")}, "ATOM");
    const auto end = static_cast<std::uint32_t>(screen.x + screen.width - 1);
    dock.setNumbers(window, "_NET_WM_STRUT_PARTIAL", {0, 0, 0, 100, 0, 0, 0, 0, 0, 0, 0, end},
                    "CARDINAL");
    dock.show(window);
    ASSERT_TRUE(waitUntil([&] { return client.hasProperty(window, "WM_STATE"); }));
    startAndWaitFor(0.75);
    const auto popover = openPopover();
    EXPECT_LE(popover.y + popover.height, bottom);
    EXPECT_GE(popover.y + popover.height, bottom - 10) << "the popover should be next to the panel";
}

TEST_P(NoctaFaceTest, OnboardingClosedByItsTitleBarIsShownOnTheNextLaunch) {
    writeFile(settings, "[General]\nautoWarmthEnabled=false\nwarmthLevel=0\n");
    startAndWaitFor(0.75);
    client.askToClose(waitFor("Welcome to Nocta").id);
    EXPECT_TRUE(isGone("Welcome to Nocta"));
    EXPECT_TRUE(shows(0.75)) << "the program should keep running";
    nocta->signal(SIGTERM);
    nocta->wait();
    start();
    waitFor("Welcome to Nocta");
}

} // namespace
} // namespace nocta
