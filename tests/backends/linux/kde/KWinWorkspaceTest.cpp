#include "backends/linux/kde/KWinWorkspace.h"

#include "backends/linux/shell/QtRunLoop.h"
#include "backends/linux/wayland/TintGammaOutput.h"
#include "backends/linux/wayland/WaylandDisplays.h"
#include "contracts/WorkspaceContract.h"
#include "support/EventLoop.h"
#include "support/KWin.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QStringList>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nocta {
namespace {

using Application = std::optional<RunningApplication>;

std::string report(const std::string& application, const std::string& screen = "null",
                   const std::string& windows = "[]") {
    return R"({"application":)" + application + R"(,"screen":)" + screen + R"(,"windows":)" +
           windows + "}";
}

/// The workspace of a private KWin.
struct WorkspaceOnKWin {
    PrivateBus bus{"DBUS_SESSION_BUS_ADDRESS"};
    KWin kwin;
    TemporaryFolder folder;
    std::string script = folder.path() + "/state/kwin.js";
    QtRunLoop runLoop;
    NotificationCenter notificationCenter;
    WaylandConnection connection{runLoop};
    WaylandDisplays displays{connection, runLoop, notificationCenter};
    bool reducesMotion = false;
    std::optional<KWinWorkspace> workspace;

    WorkspaceOnKWin() {
        createWorkspace();
        EXPECT_TRUE(serveUntil([this] { return workspace->copyWindowInfo().has_value(); }));
    }
    void createWorkspace() {
        workspace.emplace(displays, script, [this] { return reducesMotion; });
    }

    /// Opens a window in front and returns once the workspace lists it.
    std::unique_ptr<Process> open(const std::string& appId) {
        const auto before = workspace->copyWindowInfo().value().size();
        auto window = std::make_unique<Process>(
            std::vector<std::string>{programFolder() + "/nocta_wayland_window", appId, "Title"});
        EXPECT_TRUE(serveUntil([&] {
            return workspace->copyWindowInfo().value().size() == before + 1;
        })) << appId;
        return window;
    }
    bool waitForFrontmost(const Application& application) {
        return serveUntil([&] { return workspace->frontmostApplication() == application; });
    }
};

} // namespace

class KWinWorkspaceHarness : WorkspaceOnKWin {
public:
    const RunningApplication editor{"Editor", "Editor"};
    const RunningApplication player{"Player", "Player"};
    const WindowSizes windowSizes{{400, 300}, {400, 300}};

    Workspace& workspace() { return *WorkspaceOnKWin::workspace; }
    static Rect displayFrame() { return {0, 0, 1280, 720}; }
    void bringToFront(const Application& application) {
        if (!application) {
            kwin.run("windows.forEach((window) => { window.minimized = true; });");
        } else if (auto& window = application == editor ? editorWindow_ : playerWindow_) {
            kwin.run("activate(windows.find((window) => String(window.resourceClass) === '" +
                     application->localizedName + "'));");
        } else {
            window = open(application->localizedName);
        }
        EXPECT_TRUE(waitForFrontmost(application));
    }
    void setWindows(const WindowSizes& sizes) {
        while (windows_.size() > sizes.size()) {
            windows_.pop_back();
        }
        while (windows_.size() < sizes.size()) {
            windows_.push_back(open("Film"));
        }
        EXPECT_TRUE(serveUntil(
            [&] { return workspace().copyWindowInfo().value().size() == sizes.size(); }));
    }
    void setReducesMotion(bool isOn) { reducesMotion = isOn; }

private:
    std::unique_ptr<Process> editorWindow_;
    std::unique_ptr<Process> playerWindow_;
    std::vector<std::unique_ptr<Process>> windows_;
};

INSTANTIATE_TYPED_TEST_SUITE_P(KWin, WorkspaceContract, KWinWorkspaceHarness);

namespace {

class KWinWorkspaceTest : public ::testing::Test, protected WorkspaceOnKWin {
protected:
    std::vector<Application> activated;
    Subscription observe() {
        return workspace->observeDidActivateApplication(
            [this](const Application& application) { activated.push_back(application); });
    }
    static bool isScriptLoaded() {
        return KWin::call({"isScriptLoaded", "nocta"}).find("true") != std::string::npos;
    }
};

TEST_F(KWinWorkspaceTest, ApplicationIdsMapToBundleIdentifiers) {
    const auto window = open("us.zoom.Zoom");
    EXPECT_TRUE(waitForFrontmost(RunningApplication{"us.zoom.xos", "us.zoom.Zoom"}));
}

TEST_F(KWinWorkspaceTest, SwitchingWindowsReportsOnlyTheNewApplication) {
    const auto one = open("One");
    ASSERT_TRUE(waitForFrontmost(RunningApplication{"One", "One"}));
    const auto observer = observe();
    const auto two = open("Two");
    EXPECT_TRUE(waitForFrontmost(RunningApplication{"Two", "Two"}));
    EXPECT_EQ(activated, (std::vector<Application>{RunningApplication{"Two", "Two"}}));
}

TEST_F(KWinWorkspaceTest, FullScreenWindowIsAsLargeAsItsScreen) {
    const auto film = open("Film");
    kwin.run("windows.forEach((window) => { window.fullScreen = true; });");
    const auto other = open("Other"); // its activation triggers the next report
    const auto windows = workspace->copyWindowInfo().value();
    const auto screen = workspace->mainScreenFrame();
    EXPECT_TRUE(std::ranges::any_of(windows, [&](const WindowInfo& window) {
        return window.width == screen->width && window.height == screen->height;
    }));
}

TEST_F(KWinWorkspaceTest, LayersAreNotReportedAsWindows) {
    const auto minimized = open("Minimized");
    TintGammaOutput tint(connection, displays);
    ASSERT_TRUE(tint.isAvailable());
    const std::vector<float> half = {0.0F, 0.5F};
    EXPECT_EQ(tint.setDisplayTransferByTable(displays.ids().at(0), half, half, half),
              statusSuccess);
    ASSERT_TRUE(serveUntil([&] { // until KWin lists the layer
        kwin.run("const layers = windows.filter((window) => window.skipTaskbar);\n"
                 "windows.forEach((window) => { window.minimized = layers.length === 1; });");
        return workspace->frontmostApplication() == std::nullopt;
    }));
    EXPECT_EQ(workspace->copyWindowInfo().value().size(), 0U);
    const auto window = open("Editor");
    EXPECT_EQ(workspace->copyWindowInfo().value().size(), 1U);
}

TEST_F(KWinWorkspaceTest, DestructorUnloadsTheScript) {
    EXPECT_TRUE(isScriptLoaded());
    workspace.reset();
    EXPECT_TRUE(waitUntil([] { return !isScriptLoaded(); }));
    EXPECT_FALSE(std::filesystem::exists(script));
}

TEST_F(KWinWorkspaceTest, ScriptLeftByAKilledProcessIsReplaced) {
    workspace.reset();
    ASSERT_TRUE(waitUntil([] { return !isScriptLoaded(); }));
    const auto stale = folder.path() + "/stale.js";
    writeFile(stale, "// reports nothing");
    KWin::call({"loadScript", stale, "nocta"});
    KWin::call({"start"});
    ASSERT_TRUE(isScriptLoaded());
    createWorkspace();
    ASSERT_TRUE(serveUntil([this] { return workspace->copyWindowInfo().has_value(); }));
    const auto window = open("Editor");
    EXPECT_TRUE(waitForFrontmost(RunningApplication{"Editor", "Editor"}));
}

TEST_F(KWinWorkspaceTest, ScriptIsLoadedAgainAfterKWinRestarts) {
    {
        const auto window = open("Editor");
        ASSERT_TRUE(waitForFrontmost(RunningApplication{"Editor", "Editor"}));
        kwin.kill();
    }
    EXPECT_TRUE(serveUntil([this] { return !workspace->copyWindowInfo().has_value(); }));
    EXPECT_EQ(workspace->frontmostApplication(), std::nullopt);
    kwin.start();
    ASSERT_TRUE(serveUntil([this] { return workspace->copyWindowInfo().has_value(); }));
    const auto window = open("Player");
    EXPECT_TRUE(waitForFrontmost(RunningApplication{"Player", "Player"}));
}

TEST_F(KWinWorkspaceTest, ReportsFromOtherProgramsAreIgnored) {
    const auto observer = observe();
    const auto receiver = QDBusConnection("nocta-session").baseService();
    ASSERT_FALSE(receiver.isEmpty());
    EXPECT_EQ(runToEnd({"dbus-send", "--session", "--type=method_call",
                        "--dest=" + receiver.toStdString(), "/nocta/windows",
                        "nocta.Windows.report", "string:" + report("[\"a\", \"b\", \"c\"]")}),
              0);
    const auto window = open("Editor"); // its report arrives later
    EXPECT_TRUE(waitForFrontmost(RunningApplication{"Editor", "Editor"}));
    EXPECT_EQ(activated, (std::vector<Application>{RunningApplication{"Editor", "Editor"}}));
}

/// Another program that owns KWin's name on the bus.
class FakeKWin final : public QDBusVirtualObject {
public:
    FakeKWin() {
        EXPECT_TRUE(connection_.registerVirtualObject("/Scripting", this));
        EXPECT_TRUE(connection_.registerService("org.kde.KWin"));
    }
    FakeKWin(const FakeKWin&) = delete;
    FakeKWin& operator=(const FakeKWin&) = delete;
    ~FakeKWin() override { QDBusConnection::disconnectFromBus("kwin"); }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        methods << message.member();
        caller_ = message.service();
        return connection.send(message.createErrorReply(QDBusError::UnknownObject, "none"));
    }
    QString introspect(const QString& /*path*/) const override { return {}; }

    void report(const QVariant& argument) {
        auto message =
            QDBusMessage::createMethodCall(caller_, "/nocta/windows", "nocta.Windows", "report");
        connection_.send(message << argument);
    }

    QStringList methods;

private:
    QDBusConnection connection_ =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, "kwin");
    QString caller_;
};

TEST(KWinWorkspaceFaultsTest, InvalidReportsAreIgnored) {
    const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
    const TemporaryFolder folder;
    NotificationCenter notificationCenter;
    SessionDisplays displays(notificationCenter);
    FakeKWin kwin;
    KWinWorkspace workspace(displays, folder.path() + "/kwin.js", [] { return false; });
    EXPECT_TRUE(serveUntil([&] { return kwin.methods.contains("start"); }))
        << "the script should be started despite the errors";
    int reports = 0;
    const auto observer = workspace.observeDidActivateApplication([&](const auto&) { ++reports; });
    const auto names = R"(["a", "b", "c"])";
    for (const auto& text :
         {std::string(), std::string("{"), std::string("[]"), std::string("{}"), report("1"),
          report("[1, 2, 3]"), report(R"(["a", "b"])"), report(names, "[1, 2]"),
          report(names, R"(["a", 0, 0, 0])"), report(names, "null", "[[1]]"),
          report(names, "null", "[[1e999, 1]]"), report(names, "null", R"([["1", "2"]])"),
          report(names) + std::string(1 << 20, ' '), std::string(100000, '[')}) {
        kwin.report(QString::fromStdString(text));
    }
    kwin.report(7);
    kwin.report(QStringList{"a"});
    kwin.report(QString::fromStdString(report(R"(["", "last", ""])", "[1, 2, 3, 4]", "[[5, 6]]")));
    EXPECT_TRUE(serveUntil([&] {
        return workspace.frontmostApplication() == RunningApplication{"last", "last"};
    }));
    EXPECT_EQ(reports, 1);
    EXPECT_EQ(workspace.mainScreenFrame(), (Rect{1, 2, 3, 4}));
    EXPECT_EQ(workspace.copyWindowInfo().value().at(0).height, 6);
}

} // namespace
} // namespace nocta
