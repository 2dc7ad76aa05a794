#include "backends/linux/x11/X11Workspace.h"

#include "backends/linux/shell/SystemTray.h"
#include "backends/linux/x11/X11Session.h"
#include "contracts/WorkspaceContract.h"
#include "support/XApplication.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace nocta {
namespace {

using Application = std::optional<RunningApplication>;
using Size = std::pair<double, double>;

/// The workspace on a private X server.
struct WorkspaceOnX11 {
    explicit WorkspaceOnX11(XServer::Kind kind) : x(kind) {}

    X11Session x;
    TemporaryFolder processes;
    bool reducesMotion = false;
    X11Workspace workspace{x.connection, x.displays, x.runLoop, [this] { return reducesMotion; },
                           processes.path()};

    /// Returns once the workspace has reported everything that has happened on the server.
    void settle() {
        x.connection.synchronize();
        // One turn each for the events, the deferred check, and events that arrive during the
        // check.
        for (int turn = 0; turn < 3; ++turn) {
            bool passed = false;
            x.runLoop.post([&] { passed = true; });
            ASSERT_TRUE(serveUntil([&] { return passed; }));
        }
    }
};

/// Sets the properties of a window manager.
class FakeWindowManager {
public:
    FakeWindowManager() : sign_(application_.make()) {
        for (const auto window : {application_.root(), sign_}) {
            application_.setNumbers(window, "_NET_SUPPORTING_WM_CHECK", {sign_}, "WINDOW");
        }
    }
    void setActiveWindow(xcb_window_t window) {
        application_.setNumbers(application_.root(), "_NET_ACTIVE_WINDOW", {window}, "WINDOW");
    }
    void setWindows(const std::vector<xcb_window_t>& windows) {
        application_.setNumbers(application_.root(), "_NET_CLIENT_LIST_STACKING", windows,
                                "WINDOW");
    }

private:
    XApplication application_;
    xcb_window_t sign_;
};

} // namespace

/// A harness in which other programs set the properties that a window manager would set.
class X11WorkspaceHarness : WorkspaceOnX11 {
public:
    const RunningApplication editor{"Editor", "Editor"};
    const RunningApplication player{"Player", "Player"};
    const WindowSizes windowSizes{{200, 100}, {400, 300}};

    X11WorkspaceHarness() : WorkspaceOnX11(XServer::Kind::xvfb) { manager_.setWindows({}); }

    Workspace& workspace() { return WorkspaceOnX11::workspace; }
    Rect displayFrame() {
        const auto frame = x.client.activeFrames().at(0);
        return {static_cast<double>(frame.x), static_cast<double>(frame.y),
                static_cast<double>(frame.width), static_cast<double>(frame.height)};
    }
    void bringToFront(const std::optional<RunningApplication>& application) {
        manager_.setActiveWindow(!application            ? xcb_window_t{XCB_NONE}
                                 : application == editor ? editorWindow_
                                                         : playerWindow_);
        settle();
    }
    void setWindows(const std::vector<std::pair<double, double>>& sizes) {
        std::vector<xcb_window_t> windows;
        for (const auto& [width, height] : sizes) {
            windows.push_back(editorProcess_.open({0, 0, width, height}));
        }
        manager_.setWindows(windows);
    }
    void setReducesMotion(bool isOn) { reducesMotion = isOn; }

private:
    FakeWindowManager manager_;
    XApplication editorProcess_{"editor", "Editor"};
    XApplication playerProcess_{"player", "Player"};
    xcb_window_t editorWindow_ = editorProcess_.open();
    xcb_window_t playerWindow_ = playerProcess_.open();
};

INSTANTIATE_TYPED_TEST_SUITE_P(X11, WorkspaceContract, X11WorkspaceHarness);

namespace {

class X11WorkspaceTest : public ::testing::Test, protected WorkspaceOnX11 {
protected:
    std::vector<Application> activated;
    Subscription observer = workspace.observeDidActivateApplication(
        [this](const Application& application) { activated.push_back(application); });

    explicit X11WorkspaceTest(XServer::Kind kind = XServer::Kind::xvfb) : WorkspaceOnX11(kind) {}

    bool waitForActivation(const Application& application) {
        return serveUntil([&] { return !activated.empty() && activated.back() == application; });
    }
    std::vector<Size> sizesOnScreen() {
        std::vector<Size> sizes;
        const auto windows = workspace.copyWindowInfo().value();
        for (const auto& window : windows) {
            sizes.emplace_back(window.width.value(), window.height.value());
        }
        std::ranges::sort(sizes);
        return sizes;
    }
};

/// Tests with a real window manager.
class X11WorkspaceInOpenboxTest : public X11WorkspaceTest {
protected:
    std::optional<Process> openbox;

    explicit X11WorkspaceInOpenboxTest(XServer::Kind kind = XServer::Kind::xvfb)
        : X11WorkspaceTest(kind) {}

    void SetUp() override {
        // The window manager runs `touch` when it starts to manage windows.
        const auto sign = processes.path() + "/started";
        openbox.emplace(
            std::vector<std::string>{"openbox", "--sm-disable", "--config-file",
                                     "/etc/xdg/openbox/rc.xml", "--startup", "touch " + sign},
            Process::Environment{{"HOME", processes.path()}}, processes.path() + "/openbox.log");
        ASSERT_TRUE(waitUntil([&] { return std::filesystem::remove(sign); }))
            << contentOf(processes.path() + "/openbox.log");
    }
};

TEST_F(X11WorkspaceInOpenboxTest, ActivatedApplicationIsReported) {
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    XApplication zoom("zoom", "zoom");
    XApplication editor("editor", "Editor");
    const auto meeting = zoom.open();
    zoom.activate(meeting);
    const Application inZoom = RunningApplication{"us.zoom.xos", "zoom"};
    const Application inEditor = RunningApplication{"Editor", "Editor"};
    ASSERT_TRUE(waitForActivation(inZoom));
    EXPECT_EQ(workspace.frontmostApplication(), inZoom);

    const auto text = editor.open();
    editor.activate(text);
    ASSERT_TRUE(waitForActivation(inEditor));
    EXPECT_EQ(workspace.frontmostApplication(), inEditor);

    zoom.activate(meeting);
    ASSERT_TRUE(waitForActivation(inZoom));
    zoom.close(meeting);
    ASSERT_TRUE(waitForActivation(inEditor));
    std::erase(activated, std::nullopt); // no window is active between two windows
    EXPECT_EQ(activated, (std::vector{inZoom, inEditor, inZoom, inEditor}));

    editor.close(text);
    EXPECT_TRUE(serveUntil([&] { return workspace.frontmostApplication() == std::nullopt; }));
}

TEST_F(X11WorkspaceInOpenboxTest, WindowsOnScreenAreListed) {
    EXPECT_EQ(sizesOnScreen(), std::vector<Size>{});
    XApplication application("editor", "Editor");
    application.open({0, 0, 400, 300});
    const auto small = application.open({0, 0, 200, 100});
    const auto elsewhere = application.open({0, 0, 201, 100});
    const auto wallpaper = application.make({0, 0, 1280, 800});
    application.setNumbers(wallpaper, "_NET_WM_WINDOW_TYPE",
                           {application.atom("_NET_WM_WINDOW_TYPE_DESKTOP")}, "ATOM");
    application.show(wallpaper);
    application.make({0, 0, 202, 100}); // a window that is never shown
    const std::vector<Size> three = {{200, 100}, {201, 100}, {400, 300}};
    ASSERT_TRUE(serveUntil([&] { return sizesOnScreen() == three; }));

    application.minimize(small);
    application.moveToDesktop(elsewhere, 1);
    const std::vector<Size> one = {{400, 300}};
    ASSERT_TRUE(serveUntil([&] { return sizesOnScreen() == one; }));
    application.moveToDesktop(elsewhere, 0xFFFFFFFF); // to all desktops
    const std::vector<Size> two = {{201, 100}, {400, 300}};
    ASSERT_TRUE(serveUntil([&] { return sizesOnScreen() == two; }));
}

TEST_F(X11WorkspaceInOpenboxTest, FullScreenWindowHasExactlyTheSizeOfTheMainScreen) {
    XApplication film("film", "Film");
    const auto window = film.open();
    film.activate(window);
    film.enterFullScreen(window);
    const std::vector<Size> whole = {{1280, 800}};
    ASSERT_TRUE(serveUntil([&] { return sizesOnScreen() == whole; }));
    EXPECT_EQ(workspace.mainScreenFrame(), (Rect{0, 0, 1280, 800}));
}

TEST_F(X11WorkspaceInOpenboxTest, NothingIsInFrontBetweenWindowManagers) {
    XApplication zoom("zoom", "zoom");
    const auto window = zoom.open();
    zoom.activate(window);
    const Application inZoom = RunningApplication{"us.zoom.xos", "zoom"};
    ASSERT_TRUE(waitForActivation(inZoom));
    openbox->signal(SIGKILL);
    openbox->wait();
    EXPECT_NE(zoom.rootNumber("_NET_ACTIVE_WINDOW"), 0U)
        << "the property should still be set after the window manager dies";
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    EXPECT_EQ(workspace.copyWindowInfo(), std::nullopt);
    EXPECT_EQ(workspace.mainScreenFrame(), (Rect{0, 0, 1280, 800}));

    SetUp();
    zoom.activate(window);
    ASSERT_TRUE(serveUntil([&] { return workspace.frontmostApplication() == inZoom; }));
}

class X11WorkspaceOnTwoScreensTest : public X11WorkspaceTest {
protected:
    X11WorkspaceOnTwoScreensTest() : X11WorkspaceTest(XServer::Kind::xorgDummy) {}
};

TEST_F(X11WorkspaceOnTwoScreensTest, MainScreenIsTheScreenOfTheActiveWindow) {
    x.server.plugSecondOutput();
    ASSERT_TRUE(serveUntil([this] { return x.list().size() == 2; }));
    const auto left = x.displays.displayBounds(x.list()[0]);
    const auto right = x.displays.displayBounds(x.list()[1]);
    ASSERT_NE(left, right);
    x.server.xrandr({"--output", "DUMMY0", "--primary"});
    FakeWindowManager manager;
    XApplication application("editor", "Editor");
    EXPECT_EQ(workspace.mainScreenFrame(), left)
        << "the main display should be the main screen if no window is active";

    manager.setActiveWindow(application.open({right.x + 50, 50, 300, 200}));
    EXPECT_EQ(workspace.mainScreenFrame(), right);
    manager.setActiveWindow(application.open({right.x - 100, 50, 300, 200}));
    EXPECT_EQ(workspace.mainScreenFrame(), right)
        << "the display that contains most of the window should be the main screen";
    manager.setActiveWindow(application.open({right.x - 200, 50, 300, 200}));
    EXPECT_EQ(workspace.mainScreenFrame(), left);

    x.server.xrandr({"--output", "DUMMY1", "--primary"});
    ASSERT_TRUE(serveUntil([&] { return x.displays.displayIsMain(x.list()[1]); }));
    manager.setActiveWindow(application.open({-500, -500, 300, 200}));
    EXPECT_EQ(workspace.mainScreenFrame(), right)
        << "the main display should be the main screen if the window is on neither";
    manager.setActiveWindow(XCB_NONE);
    EXPECT_EQ(workspace.mainScreenFrame(), right);
}

TEST_F(X11WorkspaceTest, NothingIsInFrontOrListedWithoutAWindowManager) {
    XApplication application("zoom", "zoom");
    const auto window = application.open();
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    EXPECT_EQ(workspace.copyWindowInfo(), std::nullopt);
    application.setNumbers(application.root(), "_NET_ACTIVE_WINDOW", {window}, "WINDOW");
    application.setNumbers(application.root(), "_NET_CLIENT_LIST_STACKING", {window}, "WINDOW");
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    EXPECT_EQ(workspace.copyWindowInfo(), std::nullopt);
    EXPECT_EQ(workspace.mainScreenFrame(), (Rect{0, 0, 1280, 800}));
}

TEST_F(X11WorkspaceTest, AnotherWindowOfTheSameApplicationIsNotReported) {
    FakeWindowManager manager;
    XApplication zoom("zoom", "zoom");
    const auto first = zoom.open();
    const auto second = zoom.open();
    zoom.setText(second, "WM_CLASS", std::string("zoom\0Meeting\0", 13), "STRING");
    zoom.setText(second, "_GTK_APPLICATION_ID", "us.zoom.Zoom");
    const Application inFirst = RunningApplication{"us.zoom.xos", "zoom"};
    const Application inSecond = RunningApplication{"us.zoom.xos", "Meeting"};
    manager.setActiveWindow(first);
    ASSERT_TRUE(waitForActivation(inFirst));
    for (const auto window : {second, first, first}) {
        manager.setActiveWindow(window);
        settle();
        EXPECT_EQ(workspace.frontmostApplication(), window == first ? inFirst : inSecond);
    }
    manager.setActiveWindow(XCB_NONE);
    ASSERT_TRUE(waitForActivation(std::nullopt));
    manager.setActiveWindow(second);
    ASSERT_TRUE(waitForActivation(inSecond));
    EXPECT_EQ(activated, (std::vector{inFirst, Application(), inSecond}));
}

TEST_F(X11WorkspaceTest, ApplicationIsIdentifiedByItsWindowProperties) {
    FakeWindowManager manager;
    XApplication silent;
    const auto window = silent.open();
    manager.setActiveWindow(window);
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    silent.setText(window, "_NET_WM_NAME", "Untitled – 1");
    EXPECT_EQ(workspace.frontmostApplication(),
              (Application{RunningApplication{std::nullopt, "Untitled – 1"}}));
    silent.setText(window, "WM_CLASS", std::string("editor\0Caf\xE9\0", 12), "STRING");
    EXPECT_EQ(workspace.frontmostApplication(), (Application{RunningApplication{"Café", "Café"}}));
    silent.setText(window, "_KDE_NET_WM_DESKTOP_FILE", "org.example.editor");
    EXPECT_EQ(workspace.frontmostApplication(),
              (Application{RunningApplication{"org.example.editor", "Café"}}));
    silent.removeProperty(window, "_KDE_NET_WM_DESKTOP_FILE");
    silent.setText(window, "_BAMF_DESKTOP_FILE", "/usr/share/applications/slack.desktop");
    EXPECT_EQ(workspace.frontmostApplication(),
              (Application{RunningApplication{"com.tinyspeck.slackmacgap", "Café"}}));
}

TEST_F(X11WorkspaceTest, SandboxIsFoundThroughTheConnectionOfTheApplication) {
    const auto root = processes.path() + "/" + std::to_string(getpid()) + "/root";
    std::filesystem::create_directories(root);
    writeFile(root + "/.flatpak-info", "[Application]\nname=com.discordapp.Discord\n");
    FakeWindowManager manager;
    XApplication application("electron", "Electron");
    const auto window = application.open();
    application.setNumbers(window, "_NET_WM_PID", {2}, "CARDINAL"); // the PID inside the sandbox
    manager.setActiveWindow(window);
    EXPECT_EQ(workspace.frontmostApplication(),
              (Application{RunningApplication{"com.discord.Discord", "Electron"}}));
}

TEST_F(X11WorkspaceTest, MappedButInvisibleWindowsAreNotListed) {
    FakeWindowManager manager;
    XApplication application("editor", "Editor");
    application.setNumbers(application.root(), "_NET_CURRENT_DESKTOP", {2}, "CARDINAL");
    const auto hidden = application.open({0, 0, 201, 100});
    const auto elsewhere = application.open({0, 0, 202, 100});
    const auto here = application.open({0, 0, 203, 100});
    const auto everywhere = application.open({0, 0, 204, 100});
    application.setNumbers(
        hidden, "_NET_WM_STATE",
        {application.atom("_NET_WM_STATE_SKIP_PAGER"), application.atom("_NET_WM_STATE_HIDDEN")},
        "ATOM");
    application.setNumbers(elsewhere, "_NET_WM_DESKTOP", {1}, "CARDINAL");
    application.setNumbers(here, "_NET_WM_DESKTOP", {2}, "CARDINAL");
    application.setNumbers(everywhere, "_NET_WM_DESKTOP", {0xFFFFFFFF}, "CARDINAL");
    manager.setWindows({hidden, elsewhere, here, everywhere});
    EXPECT_EQ(sizesOnScreen(), (std::vector<Size>{{203, 100}, {204, 100}}));
}

TEST_F(X11WorkspaceTest, ClosedWindowsAreNotReported) {
    FakeWindowManager manager;
    XApplication application("zoom", "zoom");
    const auto window = application.open();
    const auto gone = application.open({0, 0, 100, 100});
    manager.setActiveWindow(window);
    ASSERT_TRUE(waitForActivation(RunningApplication{"us.zoom.xos", "zoom"}));
    application.close(gone);
    manager.setWindows({window, gone});
    EXPECT_EQ(sizesOnScreen(), (std::vector<Size>{{400, 300}}));
    manager.setActiveWindow(gone);
    ASSERT_TRUE(waitForActivation(std::nullopt));
    EXPECT_EQ(workspace.mainScreenFrame(), (Rect{0, 0, 1280, 800}));
}

TEST_F(X11WorkspaceTest, InvalidPropertiesAreIgnored) {
    FakeWindowManager manager;
    XApplication application("zoom", "zoom");
    const auto root = application.root();
    const auto window = application.open();
    for (const auto& type : {"CARDINAL", "ATOM"}) {
        application.setNumbers(root, "_NET_ACTIVE_WINDOW", {window}, type);
        application.setNumbers(root, "_NET_CLIENT_LIST_STACKING", {window}, type);
        EXPECT_EQ(workspace.frontmostApplication(), std::nullopt) << type;
        EXPECT_EQ(workspace.copyWindowInfo(), std::nullopt) << type;
    }
    application.setText(root, "_NET_ACTIVE_WINDOW", "text", "WINDOW");
    application.setText(root, "_NET_CLIENT_LIST_STACKING", "text", "WINDOW");
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    EXPECT_EQ(workspace.copyWindowInfo(), std::nullopt);
    application.setNumbers(root, "_NET_ACTIVE_WINDOW", {}, "WINDOW");
    application.setNumbers(root, "_NET_CLIENT_LIST_STACKING", {}, "WINDOW");
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    EXPECT_EQ(sizesOnScreen(), std::vector<Size>{});

    std::vector<xcb_window_t> many(50000, 0xFFFFFFFF);
    many.front() = window;
    manager.setWindows(many);
    EXPECT_EQ(sizesOnScreen(), (std::vector<Size>{{400, 300}}));

    manager.setActiveWindow(window);
    application.setText(window, "WM_CLASS", "zoom", "STRING");
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt)
        << "an instance name without a class should be ignored";
    application.setNumbers(window, "WM_CLASS", {1, 2, 3}, "CARDINAL");
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    application.setText(window, "WM_CLASS", std::string("a\0", 2) + std::string(200000, 'b'),
                        "STRING");
    EXPECT_EQ(workspace.frontmostApplication().value().localizedName, std::string(1022, 'b'));
}

TEST_F(X11WorkspaceTest, EventsStillArriveWhileATrayObservesTheRootWindow) {
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
    SystemTray tray(&x.connection);
    FakeWindowManager manager;
    XApplication application("zoom", "zoom");
    manager.setActiveWindow(application.open());
    EXPECT_TRUE(waitForActivation(RunningApplication{"us.zoom.xos", "zoom"}));
    x.client.becomeSystemTray();
    EXPECT_TRUE(serveUntil([&] { return tray.isAvailable(); }));
}

TEST_F(X11WorkspaceTest, NothingIsReportedAfterTheServerExits) {
    FakeWindowManager manager;
    XApplication application("zoom", "zoom");
    manager.setActiveWindow(application.open());
    ASSERT_TRUE(waitForActivation(RunningApplication{"us.zoom.xos", "zoom"}));
    bool isLost = false;
    x.connection.onLost = [&] { isLost = true; };
    x.server.kill();
    ASSERT_TRUE(serveUntil([&] { return isLost; }));
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    EXPECT_EQ(workspace.copyWindowInfo(), std::nullopt);
}

} // namespace
} // namespace nocta
