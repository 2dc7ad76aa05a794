#include "backends/linux/shell/QtRunLoop.h"
#include "backends/linux/wayland/ToplevelWorkspace.h"
#include "support/EventLoop.h"
#include "support/ToplevelCompositor.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nocta {
namespace {

using Application = std::optional<RunningApplication>;
using State = ToplevelCompositor::State;

constexpr Rect left{0, 0, 1280, 720};
constexpr Rect right{1280, 0, 1280, 720};
const Application inZoom = RunningApplication{"us.zoom.xos", "zoom"};
const Application inEditor = RunningApplication{"Editor", "Editor"};

/// The workspace on a compositor whose events the test chooses. The compositor has two outputs; the
/// left one is the main display.
class ToplevelEventsTest : public ::testing::Test {
protected:
    ToplevelCompositor compositor;
    QtRunLoop runLoop;
    NotificationCenter notificationCenter;
    std::unique_ptr<WaylandConnection> connection;
    std::unique_ptr<WaylandDisplays> displays;
    std::unique_ptr<ToplevelWorkspace> workspace;
    std::vector<Application> activated;
    Subscription observer;

    void SetUp() override {
        compositor.send([this] {
            compositor.addOutput("DP-1", 0);
            compositor.addOutput("DP-2", 1280);
        });
        connection = std::make_unique<WaylandConnection>(runLoop);
        displays = std::make_unique<WaylandDisplays>(*connection, runLoop, notificationCenter);
        workspace = std::make_unique<ToplevelWorkspace>(*connection, *displays, runLoop,
                                                        [] { return false; });
        ASSERT_EQ(displays->ids().size(), 2U);
        ASSERT_TRUE(workspace->isAvailable());
        observer = workspace->observeDidActivateApplication(
            [this](const Application& application) { activated.push_back(application); });
    }

    /// Sends the events together, and returns once the workspace has reported all of them.
    void send(const std::function<void()>& events) {
        compositor.send(events);
        for (int turn = 0; turn < 3; ++turn) {
            EXPECT_TRUE(connection->synchronize());
            bool passed = false;
            runLoop.post([&] { passed = true; });
            ASSERT_TRUE(serveUntil([&] { return passed; }));
        }
    }
    /// Sends the events that open a window.
    void open(std::size_t window, const std::string& appId, const std::vector<State>& states,
              const std::string& output) {
        compositor.open();
        compositor.setAppId(window, appId);
        compositor.setStates(window, states);
        compositor.enter(window, output);
        compositor.finishDescription(window);
    }
    std::vector<std::optional<double>> widths() {
        std::vector<std::optional<double>> widths;
        const auto windows = workspace->copyWindowInfo().value();
        for (const auto& window : windows) {
            widths.push_back(window.width);
        }
        return widths;
    }
};

TEST_F(ToplevelEventsTest, DescriptionIsAppliedWhenItIsComplete) {
    send([this] {
        compositor.open();
        compositor.setAppId(0, "zoom");
        compositor.setStates(0, {State::activated, State::fullScreen});
        compositor.enter(0, "DP-2");
    });
    EXPECT_EQ(workspace->frontmostApplication(), std::nullopt);
    EXPECT_EQ(workspace->mainScreenFrame(), left);
    send([this] { compositor.finishDescription(0); });
    EXPECT_EQ(workspace->frontmostApplication(), inZoom);
    EXPECT_EQ(workspace->mainScreenFrame(), right);
    EXPECT_EQ(widths(), (std::vector<std::optional<double>>{1280}));
    EXPECT_EQ(activated, (std::vector{inZoom}));
}

TEST_F(ToplevelEventsTest, SimultaneousChangesCauseOneActivation) {
    send([this] {
        open(0, "zoom", {State::activated}, "DP-1");
        open(1, "Editor", {}, "DP-1");
    });
    send([this] {
        compositor.setStates(0, {});
        compositor.finishDescription(0);
        compositor.setStates(1, {State::activated});
        compositor.finishDescription(1);
    });
    EXPECT_EQ(activated, (std::vector{inZoom, inEditor}));
    send([this] {
        compositor.close(1);
        compositor.setStates(0, {State::activated});
        compositor.finishDescription(0);
    });
    EXPECT_EQ(activated, (std::vector{inZoom, inEditor, inZoom}));
}

TEST_F(ToplevelEventsTest, NewTitleDoesNotCauseAnActivation) {
    send([this] { open(0, "", {State::activated}, "DP-1"); });
    EXPECT_EQ(activated, (std::vector<Application>{}));
    send([this] { compositor.setTitle(0, "Page 1"); });
    EXPECT_EQ(workspace->frontmostApplication(), std::nullopt)
        << "the description should not be complete yet";
    send([this] { compositor.finishDescription(0); });
    EXPECT_EQ(workspace->frontmostApplication(), (RunningApplication{std::nullopt, "Page 1"}));
    EXPECT_EQ(activated, (std::vector<Application>{}));
    send([this] {
        compositor.setAppId(0, "zoom");
        compositor.finishDescription(0);
    });
    EXPECT_EQ(activated, (std::vector{inZoom}))
        << "a new application ID should cause an activation";
}

TEST_F(ToplevelEventsTest, InvalidUtf8IsKeptUnchanged) {
    send([this] {
        open(0, "\xFF\xFEzoom", {State::activated}, "DP-1");
        compositor.setTitle(0, "\xC3");
        compositor.finishDescription(0);
    });
    ASSERT_TRUE(workspace->frontmostApplication());
    EXPECT_EQ(workspace->frontmostApplication()->localizedName, "\xFF\xFEzoom");
}

TEST_F(ToplevelEventsTest, MinimizedWindowsAreNotListed) {
    send([this] {
        open(0, "Film", {State::minimized, State::fullScreen}, "DP-1");
        open(1, "Editor", {State::maximized}, "DP-1");
    });
    EXPECT_EQ(widths(), (std::vector<std::optional<double>>{std::nullopt}));
    send([this] {
        compositor.setStates(0, {State::fullScreen});
        compositor.finishDescription(0);
    });
    EXPECT_EQ(widths(), (std::vector<std::optional<double>>{1280, std::nullopt}));
}

TEST_F(ToplevelEventsTest, WindowOnBothScreensIsOnTheMainDisplay) {
    send([this] { open(0, "Film", {State::activated, State::fullScreen}, "DP-2"); });
    EXPECT_EQ(workspace->mainScreenFrame(), right);
    send([this] {
        compositor.enter(0, "DP-1");
        compositor.finishDescription(0);
    });
    EXPECT_EQ(workspace->mainScreenFrame(), left);
}

TEST_F(ToplevelEventsTest, OutputCanBeRemovedWhileItShowsAWindow) {
    send([this] { open(0, "Film", {State::activated, State::fullScreen}, "DP-2"); });
    EXPECT_EQ(workspace->mainScreenFrame(), right);
    send([this] { compositor.removeOutput("DP-2"); });
    EXPECT_EQ(workspace->mainScreenFrame(), left);
    EXPECT_EQ(widths(), (std::vector<std::optional<double>>{std::nullopt}));
    send([this] { compositor.addOutput("DP-3", 1280); });
    EXPECT_EQ(displays->ids().size(), 2U);
    EXPECT_EQ(workspace->mainScreenFrame(), left)
        << "the window should not be on the new output yet";
    send([this] {
        compositor.enter(0, "DP-3");
        compositor.finishDescription(0);
    });
    EXPECT_EQ(workspace->mainScreenFrame(), right);
}

TEST_F(ToplevelEventsTest, WindowCanEnterARemovedOutput) {
    send([this] {
        compositor.removeOutput("DP-1");
        compositor.removeOutput("DP-2");
    });
    send([this] { open(0, "Film", {State::activated, State::fullScreen}, "DP-2"); });
    EXPECT_EQ(workspace->frontmostApplication(), (RunningApplication{"Film", "Film"}));
    EXPECT_EQ(workspace->mainScreenFrame(), std::nullopt);
    EXPECT_EQ(widths(), (std::vector<std::optional<double>>{std::nullopt}));
}

TEST_F(ToplevelEventsTest, CompositorCanStopReportingWindows) {
    send([this] {
        open(0, "zoom", {State::activated}, "DP-2");
        open(1, "Editor", {}, "DP-1");
    });
    send([this] { compositor.finish(); });
    EXPECT_FALSE(workspace->isAvailable());
    EXPECT_EQ(workspace->frontmostApplication(), std::nullopt);
    EXPECT_EQ(workspace->copyWindowInfo(), std::nullopt);
    EXPECT_EQ(workspace->mainScreenFrame(), left);
    EXPECT_EQ(activated, (std::vector{inZoom, Application()}));
}

TEST(ToplevelWorkspaceWithoutReports, OnlyTheMainScreenIsKnown) {
    ToplevelCompositor compositor(false);
    compositor.send([&] { compositor.addOutput("DP-1", 0); });
    QtRunLoop runLoop;
    NotificationCenter notificationCenter;
    WaylandConnection connection(runLoop);
    WaylandDisplays displays(connection, runLoop, notificationCenter);
    ToplevelWorkspace workspace(connection, displays, runLoop, [] { return true; });
    EXPECT_FALSE(workspace.isAvailable());
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    EXPECT_EQ(workspace.copyWindowInfo(), std::nullopt);
    EXPECT_EQ(workspace.mainScreenFrame(), left);
    EXPECT_TRUE(workspace.accessibilityDisplayShouldReduceMotion());
}

} // namespace
} // namespace nocta
