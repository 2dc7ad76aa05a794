#include "support/NoctaWithPanel.h"
#include "support/PrivateBus.h"
#include "support/TrafficWatch.h"

#include <chrono>
#include <initializer_list>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <utility>
#include <vector>

// Runs the program as it is built for users. A simulated user opens every window and uses every
// control repeatedly. The program must connect only to the X server and the message buses.

namespace nocta {
namespace {

using namespace std::chrono_literals;

constexpr auto useTime = 10min;

TEST(TrafficWatch, ReportsNetworkTrafficOfChildProcesses) {
    for (const auto* const protocol : {"tcp", "udp"}) {
        const TemporaryFolder folder;
        const auto trace = folder.path() + "/trace";
        const auto reach = std::string("exec 3<>/dev/") + protocol + "/127.0.0.1/9";
        runToEnd(underWatch({"sh", "-c", "bash -c '" + reach + "'; true"}, trace));
        const auto stray = strayTraffic(contentOf(trace), {});
        EXPECT_TRUE(std::ranges::any_of(stray, [](const std::string& line) {
            return line.find("connect(") != std::string::npos &&
                   line.find("127.0.0.1") != std::string::npos;
        })) << contentOf(trace);
    }
}

TEST(TrafficWatch, AllowsOnlyTheNamedSockets) {
    const std::vector<std::string> allowed = {"@/tmp/.X11-unix/X7", "/run/bus"};
    for (const auto* const line :
         {R"(1 socket(AF_UNIX, SOCK_STREAM|SOCK_CLOEXEC, 0) = 3)",
          R"(1 connect(3, {sa_family=AF_UNIX, sun_path=@"/tmp/.X11-unix/X7"}, 20) = 0)",
          R"(1 connect(3, {sa_family=AF_UNIX, sun_path="/run/bus"}, 110 <unfinished ...>)",
          R"(1 bind(3, {sa_family=AF_UNIX, sun_path=@"own"}, 6) = 0)",
          R"(1 getsockname(3, {sa_family=AF_UNIX}, [128 => 2]) = 0)",
          R"(1 sendto(3, "\0", 1, MSG_NOSIGNAL, NULL, 0) = 1)",
          R"(1 sendmsg(3, {msg_name=NULL, msg_namelen=0}, 0) = 1)"}) {
        EXPECT_EQ(strayTraffic(line, allowed), std::vector<std::string>{}) << line;
    }
    for (const std::string line :
         {R"(1 connect(3, {sa_family=AF_UNIX, sun_path="/tmp/.X11-unix/X7"}, 20) = 0)",
          R"(1 connect(3, {sa_family=AF_UNIX, sun_path="/run/bus2"}, 20) = -1 ENOENT)",
          R"(1 connect(3, {sa_family=AF_UNIX, sun_path="/var/run/nscd/socket"} <unfinished ...>)",
          R"(1 sendto(3, "a", 1, 0, {sa_family=AF_UNIX, sun_path="/dev/log"}, 110) = 1)",
          R"(1 sendto(3, "a", 1, 0, {sa_family=AF_INET6, sin6_port=htons(53)}, 28) = 1)",
          R"(1 sendmsg(3, {msg_name={sa_family=AF_INET, sin_port=htons(53)}}, 0) = 1)",
          R"(1 bind(3, {sa_family=AF_NETLINK, nl_pid=0, nl_groups=00000000}, 12) = 0)",
          R"(1 <... accept4 resumed>{sa_family=AF_INET, sin_port=htons(1)}, [16]) = 4)",
          R"(1 socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP) = 3)",
          R"(1 socket(AF_NETLINK, SOCK_RAW|SOCK_CLOEXEC, NETLINK_ROUTE) = 3)",
          R"(1 io_uring_setup(1, {flags=0}) = 3)"}) {
        EXPECT_EQ(strayTraffic(line, allowed), std::vector{line});
    }
}

class NoTrafficTest : public NoctaWithPanel {
protected:
    PrivateBus sessionBus{"DBUS_SESSION_BUS_ADDRESS"};
    PrivateBus systemBus{"DBUS_SYSTEM_BUS_ADDRESS"};
    std::string trace = home.path() + "/trace";

    void SetUp() override {
        NoctaWithPanel::SetUp();
        // The program needs this property to turn the screen gray.
        client.setOutputProperty("CTM", {0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1});
        // A first launch, with a break after one second.
        writeFile(settings, "[General]\nbreakIntervalMinutes=0\nbreakDurationSeconds=600\n");
        auto variables = environment();
        variables["XDG_STATE_HOME"] = "";
        variables["DBUS_SESSION_BUS_ADDRESS"] = sessionBus.address();
        variables["DBUS_SYSTEM_BUS_ADDRESS"] = systemBus.address();
        nocta = std::make_unique<Process>(underWatch({programFolder() + "/nocta"}, trace),
                                          variables, output);
    }

    std::vector<std::string> allowedSockets() const {
        const auto pathOf = [](const PrivateBus& bus) {
            return bus.address().substr(std::string_view("unix:path=").size());
        };
        const auto x = "/tmp/.X11-unix/X" + server.display().substr(1);
        return {x, "@" + x, pathOf(sessionBus), pathOf(systemBus)};
    }

    std::string loginItem() const {
        return contentOf(home.path() + "/.config/autostart/nocta.desktop");
    }

    /// Waits for a condition, and throws if it times out.
    template <class Condition>
    void await(const std::string& what, const Condition& condition) {
        if (!waitUntil(condition)) {
            throw std::runtime_error("timeout waiting for: " + what + "\n" + contentOf(settings) +
                                     contentOf(output));
        }
    }
    Window awaitWindow(const std::string& title) {
        const auto window = waitFor(title);
        await(title, [&] { return find(title).has_value(); });
        return window;
    }
    void awaitEnd(const std::string& title) {
        await("end of " + title, [&] { return !find(title).has_value(); });
    }

    /// Presses the keys in order, as fast as the server accepts them.
    void press(const std::vector<xcb_keysym_t>& keys) {
        for (const auto key : keys) {
            client.press(key);
        }
    }
    void type(std::string_view text) {
        for (const auto letter : text) {
            client.press(static_cast<xcb_keysym_t>(letter));
        }
    }
    /// Presses the keys and waits until the value of `seen()` changes.
    template <class Seen>
    void change(const std::string& what, const Seen& seen,
                std::initializer_list<xcb_keysym_t> keys) {
        const auto before = seen();
        press(keys);
        await(what, [&] { return seen() != before; });
    }
    void change(const std::string& key, std::initializer_list<xcb_keysym_t> keys) {
        change(
            key, [&] { return stored(key); }, keys);
    }
    /// Toggles the focused switch twice.
    void pressTwice(const std::string& key) {
        change(key, {space});
        change(key, {space});
    }

    bool isCovered() {
        const auto frame = client.activeFrames().at(0);
        const auto focus = client.focus();
        const auto windows = client.windows([&](const Window& window) {
            return window.isOverrideRedirect && window.width == frame.width &&
                   window.height == frame.height && window.id == focus;
        });
        return !windows.empty();
    }

    void takeBreaks();
    void walkThroughFirstLaunch();
    void useThePopover();
    void useTheMenu();
    void useThePreferences();
    void useGeneral();
    void useBrightness();
    void useColor();
    void useBreaks();
    void useFeedback(const Window& window);
    void useAbout();
    std::ptrdiff_t linesIn(const Window& window);
    void quitByThePopover();
};
INSTANTIATE_TEST_SUITE_P(Servers, NoTrafficTest, ::testing::Values(XServer::Kind::xvfb),
                         serverName);

/// Skips one break and snoozes the next.
void NoTrafficTest::takeBreaks() {
    using Keys = std::vector<xcb_keysym_t>;
    for (const auto& [keys, total] :
         {std::pair(Keys{space}, R"(\"skippedBreaks\":1)"),
          std::pair(Keys{tab, tab, enter}, R"(\"snoozedBreaks\":1)")}) { // the second button
        await("break", [&] { return isCovered(); });
        press(keys);
        await("end of the break", [&] { return !isCovered(); });
        EXPECT_TRUE(waitUntil([&] {
            return stored("breakStatistics").find(total) != std::string::npos;
        })) << contentOf(settings);
    }
}

void NoTrafficTest::walkThroughFirstLaunch() {
    awaitWindow("Welcome to Nocta");
    press({space});                       // "Continue", which has keyboard focus
    press({tab, space, tab, tab, space}); // "Allow", "Back", and "Continue"
    change("activeProfileId", {tab, down, space});
    press({tab, space}); // shows the adjustments
    change("unifiedBrightness", {tab, leftArrow});
    change("warmthLevel", {tab, leftArrow});
    press({tab});
    pressTwice("grayscaleEnabled");
    press({tab});
    pressTwice("breakTimerEnabled");
    press({tab, space, space}); // "Back", and "Continue" again
    press({space, tab});        // the tab moves to the switch in the last step
    change("login item", [&] { return loginItem(); }, {space});
    change("login item", [&] { return loginItem(); }, {space});
    change("isFirstLaunch", {tab, tab, space}); // "Finish" comes after "Back"
    awaitEnd("Welcome to Nocta");
}

/// Leaves the preferences open.
void NoTrafficTest::useThePopover() {
    openPopover();
    change("unifiedBrightness", {leftArrow});
    press({tab});
    if (stored("autoWarmthEnabled") != "false") {
        change("autoWarmthEnabled", {rightArrow});
    }
    change("autoWarmthEnabled", {leftArrow});
    change("autoWarmthEnabled", {rightArrow}); // shows the slider
    change("warmthLevel", {tab, leftArrow});
    press({tab});
    pressTwice("grayscaleEnabled");
    press({tab});
    pressTwice("breakTimerEnabled");
    press({tab, space}); // "Preferences"
    awaitWindow("Preferences — Nocta");
    await("end of the popover", [&] { return client.windowsOfSize(300, 280).empty(); });
}

void NoTrafficTest::useTheMenu() {
    const auto isMenu = [](const Window& window) {
        return window.isOverrideRedirect && window.width > 80 && window.height > 100 &&
               window.width < 300;
    };
    const auto open = [&] {
        openPopover(); // a click in between, so that two right clicks are not a double click
        press({escape});
        await("end of the popover", [&] { return client.windowsOfSize(300, 280).empty(); });
        clickIcon(right);
        await("menu", [&] { return !client.windows(isMenu).empty(); });
    };
    const auto isClosed = [&] { return client.windows(isMenu).empty(); };
    const auto changeByMenu = [&](const std::string& key,
                                  std::initializer_list<xcb_keysym_t> keys) {
        open();
        change(key, keys);
        await("end of the menu", isClosed);
    };
    changeByMenu("unifiedBrightness", {down, rightArrow, down, down, enter}); // 50%
    EXPECT_TRUE(waitUntil([&] { return stored("unifiedBrightness") == "0.5"; }));
    changeByMenu("autoWarmthEnabled", {down, down, rightArrow, down, enter}); // "Manual"
    changeByMenu("autoWarmthEnabled", {down, down, rightArrow, enter});       // "Auto"
    for (int i = 0; i < 2; ++i) {
        changeByMenu("grayscaleEnabled", {down, down, down, enter});
        changeByMenu("breakTimerEnabled", {down, down, down, down, enter});
    }
    open();
    press({down, down, down, down, down, enter});
    client.askToClose(awaitWindow("Preferences — Nocta").id);
    awaitEnd("Preferences — Nocta");
}

/// Begins at the tab bar. The tab bar has focus at first, and gets focus again after the last
/// control in each tab.
void NoTrafficTest::useThePreferences() {
    const auto window = awaitWindow("Preferences — Nocta");
    useGeneral();
    press({tab, rightArrow});
    useBrightness();
    press({tab, rightArrow});
    useColor();
    press({tab, rightArrow});
    useBreaks();
    press({tab});
    useFeedback(window);
    press({tab, rightArrow});
    useAbout();
    client.askToClose(window.id);
    awaitEnd("Preferences — Nocta");
}

void NoTrafficTest::useGeneral() {
    press({tab});
    change("login item", [&] { return loginItem(); }, {space});
    change("login item", [&] { return loginItem(); }, {space});
    change("menuBarIcon", {tab, rightArrow});
    press({tab});
    pressTwice("grayscaleEnabled");
    change("menuBarIcon", {tab, space}); // "Reset to Defaults"
    EXPECT_TRUE(waitUntil([&] { return stored("unifiedBrightness") == "0.75"; }));
}

void NoTrafficTest::useBrightness() {
    change("unifiedBrightness", {tab, leftArrow});
    press({tab});
    pressTwice("allowFullBlack");
}

void NoTrafficTest::useColor() {
    change("warmthLevel", {tab, leftArrow});
    press({tab});
    pressTwice("autoWarmthEnabled");
    press({tab});
    pressTwice("locationEnabled");
    for (const std::string key : {"colorTemperatureDay", "colorTemperatureNight"}) {
        press({tab});
        type("4321");
        press({enter});
        await(key, [&] { return stored(key) == "4321"; });
        change(key, {up});
        change(key, {down});
    }
}

void NoTrafficTest::useBreaks() {
    press({tab});
    pressTwice("breakTimerEnabled");
    press({tab});
    change("breakIntervalMinutes", {down});
    change("breakIntervalMinutes", {space, down, enter}); // chooses from the list
    press({tab});
    change("breakDurationSeconds", {down});
    change("breakDurationSeconds", {space, down, enter});
    press({tab});
    pressTwice("suspendDuringMeetings");
}

/// Counts the lines of text and controls in the window. A row of pixels that shows only background
/// ends a line.
std::ptrdiff_t NoTrafficTest::linesIn(const Window& window) {
    constexpr std::size_t pixelSize = 4;
    const auto picture = client.picture(window);
    const auto rowSize = pixelSize * static_cast<std::size_t>(window.width);
    const std::vector<std::uint8_t> lastRow(picture.end() - static_cast<std::ptrdiff_t>(rowSize),
                                            picture.end());
    std::ptrdiff_t lines = 0;
    bool wasEmpty = true;
    for (std::size_t row = 0; row < picture.size(); row += rowSize) {
        const auto isEmpty = std::equal(lastRow.begin(), lastRow.end(),
                                        picture.begin() + static_cast<std::ptrdiff_t>(row));
        lines += wasEmpty && !isEmpty ? 1 : 0;
        wasEmpty = isEmpty;
    }
    return lines;
}

/// Uses the two switches. The other controls are disabled, because this build has no update feed.
void NoTrafficTest::useAbout() {
    const auto memory = [&] { return contentOf(home.path() + "/.local/state/nocta/updates.conf"); };
    for (const auto* const name : {"automatic checks", "automatic downloads"}) {
        press({tab});
        change(name, memory, {space});
        change(name, memory, {space});
    }
}

/// Sends feedback. This build has no address for feedback, so the form shows an error until the
/// preferences close.
void NoTrafficTest::useFeedback(const Window& window) {
    const auto lines = [&] { return linesIn(window); };
    change("page", lines, {rightArrow});
    const auto before = lines();
    press({tab, space, down, enter, tab});
    type("dim");
    press({tab});
    type("me");
    press({tab, space});
    await("answer", [&] { return lines() == before + 1; });
}

void NoTrafficTest::quitByThePopover() {
    const auto popover = openPopover();
    client.click(popover.x + 258, popover.y + 262);
    const auto status = nocta->wait();
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << contentOf(output);
}

TEST_P(NoTrafficTest, UsingEveryControlMakesNoConnectionOutsideTheSession) {
    const auto start = std::chrono::steady_clock::now();
    takeBreaks();
    walkThroughFirstLaunch();
    int rounds = 0;
    while (std::chrono::steady_clock::now() - start < useTime) {
        useThePopover();
        useThePreferences();
        useTheMenu();
        ++rounds;
    }
    quitByThePopover();

    const auto seen = contentOf(trace);
    for (const auto& socket : {"/tmp/.X11-unix/X", "DBUS_SESSION", "DBUS_SYSTEM"}) {
        EXPECT_NE(seen.find(socket), std::string::npos) << socket << " should be in the trace";
    }
    EXPECT_EQ(strayTraffic(seen, allowedSockets()), std::vector<std::string>{});
    std::cout << rounds << " rounds, " << std::ranges::count(seen, '\n') << " calls seen\n";
}

} // namespace
} // namespace nocta
