#include "app/AppDelegate.h"
#include "support/TestDesktop.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace nocta {
namespace {

using namespace std::chrono_literals;
using Calls = std::vector<std::string>;

class UpdateWindowTest : public TestDesktop {};

TEST_F(UpdateWindowTest, UpdaterThatCannotStartChangesNothingAndPrintsNothing) {
    desktop.updater.present = Updater::Availability::noFeed;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    launch();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(desktop.statusBar.hasItem());
    EXPECT_TRUE(desktop.appWindows.isOnScreen("Welcome to Nocta"));
}

TEST_F(UpdateWindowTest, FailedUpdateCycleIsLogged) {
    launch();
    testing::internal::CaptureStderr();
    desktop.updater.didFinishUpdateCycle("Host not found");
    desktop.updater.didFinishUpdateCycle(std::nullopt);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Sparkle update check failed: Host not found\n");
}

TEST_F(UpdateWindowTest, EachStageOfAnUpdateHasAWindow) {
    settings().isFirstLaunch.set(false);
    launch();
    desktop.trace.clear();
    const auto show = [this](UpdateStage stage) {
        desktop.updater.stage.set(std::move(stage));
        desktop.runLoop.advance(0s);
        return desktop.appWindows.windows().size();
    };
    EXPECT_EQ(show(UpdateCheckInProgress{}), 1U);
    EXPECT_EQ(show(UpdateFound{.version = "1.3"}), 1U);
    EXPECT_EQ(show(UpdateFound{.version = "1.3"}), 1U) << "the window should come to the front";
    EXPECT_EQ(calls("window make").size(), 3U);
    EXPECT_EQ(calls("activate").size(), 3U);
    EXPECT_EQ(show({}), 0U);
    EXPECT_EQ(views.othersAlive, 1) << "only the view of the menu should be left";
}

TEST_F(UpdateWindowTest, UpdateThatTheUserDidNotRequestDoesNotTakeFocus) {
    settings().isFirstLaunch.set(false);
    launch();
    for (const auto& stage : std::vector<UpdateStage>{
             UpdateFound{.version = "1.3"}, UpdatePermissionRequest{}, UpdaterError{"broken"}}) {
        desktop.trace.clear();
        desktop.updater.stage.set(stage);
        desktop.runLoop.advance(0s);
        EXPECT_EQ(calls(), Calls{"window orderFrontRegardless Software Update"});
        desktop.updater.stage.set({});
        desktop.runLoop.advance(0s);
    }
}

TEST_F(UpdateWindowTest, ClosingTheUpdateWindowDismissesTheUpdate) {
    settings().isFirstLaunch.set(false);
    launch();
    desktop.updater.stage.set(UpdateFound{.version = "1.3"});
    desktop.runLoop.advance(0s);
    desktop.trace.clear();
    desktop.appWindows.close("Software Update");
    desktop.runLoop.advance(0s);
    EXPECT_EQ(calls("dismiss").size(), 1U);
    EXPECT_TRUE(desktop.appWindows.windows().empty());
    desktop.updater.stage.set(UpdateFound{.version = "1.3"});
    desktop.runLoop.advance(0s);
    EXPECT_TRUE(desktop.appWindows.isOnScreen("Software Update"));
}

} // namespace
} // namespace nocta
