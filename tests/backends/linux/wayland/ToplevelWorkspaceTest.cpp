#include "backends/linux/wayland/ToplevelWorkspace.h"

#include "backends/linux/shell/QtRunLoop.h"
#include "contracts/WorkspaceContract.h"
#include "support/EventLoop.h"
#include "support/Sway.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace nocta {
namespace {

using Application = std::optional<RunningApplication>;
using Size = std::optional<std::pair<double, double>>; ///< empty if unknown

/// The workspace on a private sway.
struct WorkspaceOnSway {
    Sway sway;
    QtRunLoop runLoop;
    NotificationCenter notificationCenter;
    WaylandConnection connection{runLoop};
    WaylandDisplays displays{connection, runLoop, notificationCenter};
    bool reducesMotion = false;
    ToplevelWorkspace workspace{connection, displays, runLoop, [this] { return reducesMotion; }};

    /// Opens a window in front and returns once the workspace lists it.
    std::unique_ptr<Process> open(const std::string& appId, const std::string& title = "Title") {
        const auto before = workspace.copyWindowInfo().value().size();
        auto window = std::make_unique<Process>(
            std::vector{programFolder() + "/nocta_wayland_window", appId, title});
        EXPECT_TRUE(serveUntil([&] {
            return workspace.copyWindowInfo().value().size() == before + 1;
        })) << appId;
        return window;
    }
    void close(const std::unique_ptr<Process>& window) {
        const auto before = workspace.copyWindowInfo().value().size();
        command(window, {"kill"});
        EXPECT_TRUE(
            serveUntil([&] { return workspace.copyWindowInfo().value().size() == before - 1; }));
    }
    /// Runs a sway command on a window.
    void command(const std::unique_ptr<Process>& window, std::vector<std::string> words) const {
        words.insert(words.begin(), "[pid=" + std::to_string(window->id()) + "]");
        sway.message(words);
    }
    /// Returns once the workspace has reported everything that has happened in sway.
    void settle() {
        // One turn each for the events, the deferred check, and the resulting requests.
        for (int turn = 0; turn < 3; ++turn) {
            EXPECT_TRUE(connection.synchronize());
            bool passed = false;
            runLoop.post([&] { passed = true; });
            ASSERT_TRUE(serveUntil([&] { return passed; }));
        }
    }
    bool waitForFrontmost(const Application& application) {
        return serveUntil([&] { return workspace.frontmostApplication() == application; });
    }
};

} // namespace

/// A harness whose windows belong to other processes. Only full-screen windows have known sizes.
class SwayWorkspaceHarness : WorkspaceOnSway {
public:
    const RunningApplication editor{"Editor", "Editor"};
    const RunningApplication player{"Player", "Player"};
    const WindowSizes windowSizes{{1280, 720}};

    Workspace& workspace() { return WorkspaceOnSway::workspace; }
    static Rect displayFrame() { return {0, 0, 1280, 720}; }
    void bringToFront(const Application& application) {
        if (!application) {
            sway.message({"workspace", "empty"});
        } else if (auto& window = application == editor ? editorWindow_ : playerWindow_) {
            command(window, {"focus"});
        } else {
            window = open(application->localizedName);
        }
        EXPECT_TRUE(waitForFrontmost(application));
        settle();
    }
    void setWindows(const WindowSizes& sizes) {
        while (windows_.size() > sizes.size()) {
            close(windows_.back());
            windows_.pop_back();
        }
        while (windows_.size() < sizes.size()) {
            windows_.push_back(open("Film"));
            command(windows_.back(), {"fullscreen", "enable"});
        }
        EXPECT_TRUE(serveUntil([this] {
            return std::ranges::all_of(
                workspace().copyWindowInfo().value(),
                [](const WindowInfo& info) { return info.width.has_value(); });
        }));
    }
    void setReducesMotion(bool isOn) { reducesMotion = isOn; }

private:
    std::unique_ptr<Process> editorWindow_;
    std::unique_ptr<Process> playerWindow_;
    std::vector<std::unique_ptr<Process>> windows_;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Sway, WorkspaceContract, SwayWorkspaceHarness);

namespace {

class ToplevelWorkspaceTest : public ::testing::Test, protected WorkspaceOnSway {
protected:
    static constexpr Rect left{0, 0, 1280, 720};
    static constexpr Rect right{1280, 0, 1280, 720};

    std::vector<Application> activated;
    Subscription observer = workspace.observeDidActivateApplication(
        [this](const Application& application) { activated.push_back(application); });

    std::vector<Size> sizes() {
        std::vector<Size> sizes;
        const auto windows = workspace.copyWindowInfo().value();
        for (const auto& window : windows) {
            EXPECT_EQ(window.width.has_value(), window.height.has_value());
            sizes.push_back(window.width ? Size({*window.width, *window.height}) : std::nullopt);
        }
        return sizes;
    }
    bool waitForSizes(const std::vector<Size>& expected) {
        return serveUntil([&] { return sizes() == expected; });
    }
    void addOutput() {
        sway.addOutput();
        ASSERT_TRUE(serveUntil([&] { return displays.ids().size() == 2; }));
    }
};

TEST_F(ToplevelWorkspaceTest, ApplicationIdsMapToBundleIdentifiers) {
    EXPECT_TRUE(workspace.isAvailable());
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"zoom", "us.zoom.xos"},
        {"us.zoom.Zoom", "us.zoom.xos"},
        {"google-chrome", "com.google.Chrome"},
        {"teams-for-linux", "com.microsoft.teams2"},
        {"com.github.IsmaelMartinez.teams_for_linux", "com.microsoft.teams2"},
        {"Slack", "com.tinyspeck.slackmacgap"},
        {"discord_discord", "com.discord.Discord"},
        {"org.gimp.GIMP", "org.gimp.GIMP"},
    };
    for (const auto& [appId, bundleIdentifier] : cases) {
        const auto window = open(appId);
        EXPECT_TRUE(waitForFrontmost(RunningApplication{bundleIdentifier, appId})) << appId;
        close(window);
    }
    EXPECT_TRUE(waitForFrontmost(std::nullopt));
}

TEST_F(ToplevelWorkspaceTest, EachActivationIsReportedOnce) {
    const Application inZoom = RunningApplication{"us.zoom.xos", "zoom"};
    const Application inEditor = RunningApplication{"Editor", "Editor"};
    const auto zoom = open("zoom");
    ASSERT_TRUE(waitForFrontmost(inZoom));
    const auto editor = open("Editor");
    ASSERT_TRUE(waitForFrontmost(inEditor));
    command(zoom, {"focus"});
    ASSERT_TRUE(waitForFrontmost(inZoom));
    close(zoom);
    ASSERT_TRUE(waitForFrontmost(inEditor));
    close(editor);
    ASSERT_TRUE(waitForFrontmost(std::nullopt));
    settle();
    std::erase(activated, std::nullopt); // no window is active between two windows
    EXPECT_EQ(activated, (std::vector{inZoom, inEditor, inZoom, inEditor}));
}

TEST_F(ToplevelWorkspaceTest, AnotherWindowOfTheSameApplicationIsNotReported) {
    const auto one = open("zoom");
    settle();
    const auto other = open("us.zoom.Zoom"); // has the same bundle identifier
    ASSERT_TRUE(waitForFrontmost(RunningApplication{"us.zoom.xos", "us.zoom.Zoom"}));
    command(one, {"focus"});
    ASSERT_TRUE(waitForFrontmost(RunningApplication{"us.zoom.xos", "zoom"}));
    settle();
    std::erase(activated, std::nullopt);
    EXPECT_EQ(activated, (std::vector<Application>{RunningApplication{"us.zoom.xos", "zoom"}}));
}

TEST_F(ToplevelWorkspaceTest, ExistingWindowsAreReadAtStartup) {
    const auto window = open("zoom");
    command(window, {"fullscreen", "enable"});
    ASSERT_TRUE(waitForSizes({Size({1280, 720})}));
    ToplevelWorkspace late(connection, displays, runLoop, [] { return false; });
    EXPECT_EQ(late.frontmostApplication(), (RunningApplication{"us.zoom.xos", "zoom"}));
    EXPECT_EQ(late.copyWindowInfo().value().at(0).width, 1280);
    int reports = 0;
    const auto observation =
        late.observeDidActivateApplication([&](const Application& /*application*/) { ++reports; });
    settle();
    EXPECT_EQ(reports, 0) << "nothing should be reported without a change";
}

TEST_F(ToplevelWorkspaceTest, OnlyFullScreenWindowsHaveASize) {
    const auto editor = open("Editor");
    const auto film = open("Film");
    settle();
    EXPECT_EQ(sizes(), (std::vector<Size>{std::nullopt, std::nullopt}));
    command(film, {"fullscreen", "enable"});
    EXPECT_TRUE(waitForSizes({std::nullopt, Size({1280, 720})}));
    command(film, {"fullscreen", "disable"});
    EXPECT_TRUE(waitForSizes({std::nullopt, std::nullopt}));
}

TEST_F(ToplevelWorkspaceTest, MainScreenIsTheScreenOfTheActiveWindow) {
    addOutput();
    EXPECT_EQ(workspace.mainScreenFrame(), left)
        << "the main display should be the main screen if no window is active";
    const auto editor = open("Editor");
    const auto film = open("Film");
    command(film, {"move", "container", "to", "output", "HEADLESS-2"});
    command(film, {"focus"});
    EXPECT_TRUE(serveUntil([&] { return workspace.mainScreenFrame() == right; }));
    command(editor, {"focus"});
    EXPECT_TRUE(serveUntil([&] { return workspace.mainScreenFrame() == left; }));
}

TEST_F(ToplevelWorkspaceTest, FullScreenWindowOnAnotherScreenHasNoSize) {
    addOutput();
    const auto editor = open("Editor");
    const auto film = open("Film");
    command(film, {"move", "container", "to", "output", "HEADLESS-2"});
    command(film, {"fullscreen", "enable"});
    command(film, {"focus"});
    EXPECT_TRUE(waitForSizes({std::nullopt, Size({1280, 720})}));
    command(editor, {"focus"});
    EXPECT_TRUE(waitForSizes({std::nullopt, std::nullopt}))
        << "only windows on the main screen should have a size";
}

TEST_F(ToplevelWorkspaceTest, TitleIsTheNameOfAWindowWithoutAnId) {
    const auto untitled = open("", "Untitled – 1");
    EXPECT_TRUE(waitForFrontmost(RunningApplication{std::nullopt, "Untitled – 1"}));
    close(untitled);
    const auto silent = open("", "");
    settle();
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    EXPECT_EQ(sizes(), (std::vector<Size>{std::nullopt}));
}

TEST_F(ToplevelWorkspaceTest, LongNamesAreSupported) {
    const std::string longText(4000, '/'); // nearly the maximum message size of the protocol
    const auto window = open(longText + "zoom.desktop", longText);
    EXPECT_TRUE(waitForFrontmost(RunningApplication{"us.zoom.xos", longText + "zoom.desktop"}));
    close(window);
    settle();
    EXPECT_EQ(activated.back(), std::nullopt);
}

TEST_F(ToplevelWorkspaceTest, NothingIsReportedAfterTheCompositorExits) {
    const auto window = open("zoom");
    settle();
    bool isLost = false;
    connection.onLost = [&] { isLost = true; };
    const auto before = activated;
    sway.kill();
    ASSERT_TRUE(serveUntil([&] { return isLost; }));
    workspace.copyWindowInfo();
    workspace.mainScreenFrame();
    EXPECT_EQ(activated, before);
}

} // namespace
} // namespace nocta
