#include "support/EventLoop.h"
#include "support/PrivateBus.h"
#include "support/Process.h"
#include "support/Sway.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

// Tests the covers and the popover of the real program in a private sway, using screenshots.

namespace nocta {
namespace {

constexpr auto first = "HEADLESS-1";
constexpr auto second = "HEADLESS-2";

int brightnessOf(const std::array<int, 3>& color) {
    return *std::ranges::max_element(color);
}

/// Whether a node of sway's tree that belongs to the process is shown in full screen.
bool isFullScreen(const nlohmann::json& node, pid_t process) {
    if (node.value("pid", 0) == process) {
        return node.value("fullscreen_mode", 0) == 1;
    }
    return std::ranges::any_of(node.at("nodes"), [&](const nlohmann::json& child) {
        return isFullScreen(child, process);
    });
}

/// A simulated panel. `click` clicks on the icon that registered last.
class Panel final : public QDBusVirtualObject {
public:
    explicit Panel(const PrivateBus& bus)
        : connection_(
              QDBusConnection::connectToBus(QString::fromStdString(bus.address()), "panel")) {
        EXPECT_TRUE(connection_.registerVirtualObject("/StatusNotifierWatcher", this));
        EXPECT_TRUE(connection_.registerService("org.kde.StatusNotifierWatcher"));
    }
    ~Panel() override { QDBusConnection::disconnectFromBus("panel"); }

    bool hasIcon() const { return !icon_.isEmpty(); }
    void click() {
        auto call = QDBusMessage::createMethodCall(icon_, "/StatusNotifierItem",
                                                   "org.kde.StatusNotifierItem", "Activate");
        call << 0 << 0;
        connection_.send(call);
    }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.member() == "RegisterStatusNotifierItem") {
            icon_ = message.arguments().at(0).toString();
            return connection.send(message.createReply());
        }
        // There is only one property. Qt answers introspection calls itself.
        return message.member() == "Get" &&
               connection.send(message.createReply(QVariant::fromValue(QDBusVariant(true))));
    }
    QString introspect(const QString& /*path*/) const override {
        return "<interface name='org.kde.StatusNotifierWatcher'>"
               "<method name='RegisterStatusNotifierItem'><arg type='s' direction='in'/></method>"
               "<property name='IsStatusNotifierHostRegistered' type='b' access='read'/>"
               "</interface>";
    }

private:
    QDBusConnection connection_;
    QString icon_;
};

class NoctaWindowsOnWaylandTest : public ::testing::Test {
protected:
    Sway sway;
    /// Keeps a keyboard on the seat. Otherwise the seat would lose its keyboard after each key.
    Process keyboard{{"wtype", "-s", "3600000"}};
    TemporaryFolder home;
    PrivateBus bus{"DBUS_SESSION_BUS_ADDRESS"};
    std::string output = home.path() + "/output";
    std::string typed = home.path() + "/typed";
    std::unique_ptr<Process> window;      ///< on the first output, with keyboard focus
    std::unique_ptr<Process> otherWindow; ///< on the second output
    std::unique_ptr<Process> nocta;

    void SetUp() override {
        sway.addOutput();
        otherWindow = openWindow("");
        ASSERT_TRUE(waitUntil([&] { return shows(first, 255); }));
        sway.message({"move", "container", "to", "output", second});
        sway.message({"focus", "output", first});
        window = openWindow(typed);
        ASSERT_TRUE(waitUntil([&] { return shows(first, 255) && shows(second, 255); }));
    }
    static std::unique_ptr<Process> openWindow(const std::string& output) {
        return std::make_unique<Process>(
            std::vector<std::string>{programFolder() + "/nocta_wayland_window", "Window", "Window"},
            Process::Environment{}, output);
    }

    void start(const std::string& settings) {
        const auto folder = home.path() + "/.config/nocta";
        std::filesystem::create_directories(folder);
        writeFile(folder + "/nocta.conf",
                  "[General]\nautoWarmthEnabled=false\nwarmthLevel=0\nisFirstLaunch=false\n"
                  "unifiedBrightness=1\n" +
                      settings);
        nocta = std::make_unique<Process>(
            std::vector{programFolder() + "/nocta"},
            Process::Environment{{"HOME", home.path()},
                                 {"XDG_CONFIG_HOME", ""},
                                 {"XDG_STATE_HOME", ""},
                                 {"DISPLAY", ""},
                                 {"QT_QPA_PLATFORM", ""},
                                 // Qt's Wayland plugin never deletes some of its objects.
                                 {"ASAN_OPTIONS", "detect_leaks=0"},
                                 {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + home.path() + "/none"}},
            output);
    }
    void stop() {
        nocta->signal(SIGTERM);
        EXPECT_EQ(nocta->wait(), 0) << contentOf(output);
    }

    /// Whether the brightest channel of a pixel outside the program's text has this level.
    bool shows(const std::string& name, int level) const {
        return brightnessOf(sway.colorAt(name, 100, 600)) == level;
    }
    /// Whether a white pixel is dimmed by the cover, which reduces it to 30%.
    bool isCovered(const std::string& name) const {
        return std::abs(brightnessOf(sway.colorAt(name, 100, 600)) - 0.3 * 255) < 1;
    }
    bool isFullScreen() const {
        return nocta::isFullScreen(nlohmann::json::parse(sway.answer("get_tree")), window->id());
    }
    static void press(const std::string& key) { ASSERT_EQ(runToEnd({"wtype", "-k", key}), 0); }
};

TEST_F(NoctaWindowsOnWaylandTest, BreakCoversEveryOutputAboveAFullScreenWindow) {
    sway.message({"fullscreen", "enable"});
    ASSERT_TRUE(waitUntil([&] { return isFullScreen(); }));
    start("breakTimerEnabled=true\nbreakIntervalMinutes=0\nbreakDurationSeconds=600\n");
    ASSERT_TRUE(waitUntil([&] { return isCovered(first) && isCovered(second); }))
        << contentOf(output);
    EXPECT_TRUE(isFullScreen());
    press("space");
    EXPECT_TRUE(waitUntil([&] { return shows(first, 255) && shows(second, 255); }));
    stop();
    EXPECT_TRUE(isFullScreen());
    EXPECT_EQ(contentOf(typed), "") << "the cover should have received the keys";
    press("a");
    EXPECT_TRUE(waitUntil([&] { return !contentOf(typed).empty(); }));
    EXPECT_EQ(contentOf(output).find("opacity"), std::string::npos) << contentOf(output);
}

TEST_F(NoctaWindowsOnWaylandTest, PopoverOpensInTheCornerAndEscapeClosesIt) {
    Panel panel(bus);
    start("breakTimerEnabled=false\n");
    ASSERT_TRUE(serveUntil([&] { return panel.hasIcon(); })) << contentOf(output);
    constexpr int right = 1280 - 12; // in the popover's margin
    constexpr int top = 50;
    const auto before = sway.colorAt(first, right, top);
    panel.click();
    EXPECT_TRUE(serveUntil([&] { return sway.colorAt(first, right, top) != before; }))
        << contentOf(output);
    EXPECT_TRUE(shows(first, 255)) << "the rest of the output should not change";
    press("Escape");
    EXPECT_TRUE(serveUntil([&] { return sway.colorAt(first, right, top) == before; }));
    const auto libraries = contentOf("/proc/" + std::to_string(nocta->id()) + "/maps");
    EXPECT_NE(libraries.find("libqwayland"), std::string::npos);
    EXPECT_EQ(libraries.find("wayland-egl"), std::string::npos) << "OpenGL should not be loaded";
    stop();
}

} // namespace
} // namespace nocta
