#include "support/NoctaProcess.h"

#include <csignal>
#include <optional>
#include <sys/wait.h>

// A person with a window manager and a panel uses the program's windows with the mouse; another
// client reads the ramps.

namespace nocta {
namespace {

constexpr xcb_keysym_t escape = 0xFF1B;
constexpr xcb_keysym_t enter = 0xFF0D;
constexpr xcb_keysym_t space = 0x20;
constexpr xcb_keysym_t tab = 0xFF09;
constexpr xcb_keysym_t up = 0xFF52;
constexpr xcb_keysym_t down = 0xFF54;
constexpr std::uint8_t left = 1;
constexpr std::uint8_t right = 3;

class NoctaFaceTest : public NoctaProcess {
protected:
    std::optional<Process> windowManager;
    std::optional<Process> panel;

    using Window = XClient::TopWindow;

    void SetUp() override {
        NoctaProcess::SetUp();
        const Process::Environment variables = {
            {"HOME", home.path()},
            {"XDG_CONFIG_HOME", ""},
            {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + home.path() + "/no-bus"}};
        windowManager.emplace(std::vector<std::string>{"openbox"}, variables,
                              home.path() + "/openbox");
        ASSERT_TRUE(waitUntil([&] { return client.hasWindowManager(); }));
        panel.emplace(std::vector<std::string>{"tint2"}, variables, home.path() + "/tint2");
    }

    /// The one window of that title.
    std::optional<Window> find(const std::string& title) {
        const auto found =
            client.windows([&](const Window& window) { return client.nameOf(window.id) == title; });
        return found.empty() ? std::nullopt : std::optional(found.front());
    }
    /// With the keyboard, when the window manager has placed it.
    Window waitFor(const std::string& title) {
        EXPECT_TRUE(waitUntil([&] {
            const auto window = find(title);
            return window && client.focus() == window->id;
        })) << title;
        return find(title).value_or(Window{});
    }
    bool isGone(const std::string& title) {
        return waitUntil([&] { return !find(title).has_value(); });
    }

    /// The symbol is white.
    bool isDrawn(const Window& icon) {
        return std::ranges::any_of(client.picture(icon),
                                   [](std::uint8_t level) { return level > 200; });
    }

    /// The program's icon in the panel.
    Window waitForIcon() {
        std::vector<Window> icons;
        EXPECT_TRUE(waitUntil([&] { // where it stays: a panel that starts moves it
            const auto before = icons;
            icons = client.windows([&](const Window& window) {
                return window.width < 64 && window.height < 64 &&
                       client.hasProperty(window.id, "_XEMBED_INFO");
            });
            return !icons.empty() && !before.empty() && icons[0].x == before[0].x &&
                   icons[0].y == before[0].y && isDrawn(icons[0]);
        })) << contentOf(home.path() + "/tint2");
        return icons.empty() ? Window{} : icons.front();
    }
    void clickIcon(std::uint8_t button = left) {
        const auto icon = waitForIcon();
        client.click(icon.x + icon.width / 2, icon.y + icon.height / 2, button);
    }
    Window openPopover() {
        clickIcon();
        EXPECT_TRUE(waitUntil([&] { return !client.windowsOfSize(300, 280).empty(); }));
        const auto found = client.windows(
            [](const Window& window) { return window.width == 300 && window.height == 280; });
        return found.empty() ? Window{} : found.front();
    }
    bool popoverIsGone() {
        return waitUntil([&] { return client.windowsOfSize(300, 280).empty(); });
    }
    std::string stored(const std::string& key) {
        const auto content = contentOf(settings);
        const auto begin = content.find("\n" + key + "=");
        return begin == std::string::npos
                   ? ""
                   : content.substr(begin + key.size() + 2,
                                    content.find('\n', begin + 1) - begin - key.size() - 2);
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaFaceTest, everyServer, serverName);

TEST_P(NoctaFaceTest, BrightnessIsDraggedInThePopoverOfTheIcon) {
    startAndWaitFor(0.75);
    const auto popover = openPopover();
    const auto screen = client.activeFrames().at(0);
    EXPECT_GE(popover.x, screen.x);
    EXPECT_LE(popover.x + popover.width, screen.x + screen.width);
    EXPECT_GE(popover.y, screen.y);
    EXPECT_LE(popover.y + popover.height, screen.y + screen.height) << "wholly on screen";

    // The knob's way is 250 points long and begins 25 from the left.
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

TEST_P(NoctaFaceTest, FooterOpensThePreferencesAndQuits) {
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

TEST_P(NoctaFaceTest, RightClickGivesAMenuThatQuits) {
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
    client.press(up); // to the last item
    client.press(enter);
    const auto status = nocta->wait();
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << contentOf(output);
    EXPECT_TRUE(isGivenBack());
}

TEST_P(NoctaFaceTest, FirstLaunchIsWalkedThrough) {
    writeFile(settings, "[General]\nautoWarmthEnabled=false\nwarmthLevel=0\n");
    startAndWaitFor(0.75); // services run already
    const auto window = waitFor("Welcome to Nocta");
    EXPECT_EQ(window.width, 500);
    EXPECT_EQ(window.height, 580);
    // One key after the other: a person sees what each has done.
    const auto press = [&](xcb_keysym_t key) {
        const auto before = client.picture(window);
        client.press(key);
        ASSERT_TRUE(waitUntil([&] { return client.picture(window) != before; })) << key;
    };
    press(space); // on "Continue", which has the keyboard
    press(space);
    press(tab); // to the cards
    press(down);
    press(space);
    EXPECT_TRUE(waitUntil([&] {
        return isClose(client.ramp(client.activeCrtcs().at(0)), expected(0.4, 3460));
    })) << contentOf(settings);
    press(tab); // to the adjustments, "Back" and "Continue"
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

TEST_P(NoctaFaceTest, OnboardingClosedByItsTitleBarReturnsAtTheNextStart) {
    writeFile(settings, "[General]\nautoWarmthEnabled=false\nwarmthLevel=0\n");
    startAndWaitFor(0.75);
    client.askToClose(waitFor("Welcome to Nocta").id);
    EXPECT_TRUE(isGone("Welcome to Nocta"));
    EXPECT_TRUE(shows(0.75)) << "the program goes on";
    nocta->signal(SIGTERM);
    nocta->wait();
    start();
    waitFor("Welcome to Nocta");
}

} // namespace
} // namespace nocta
