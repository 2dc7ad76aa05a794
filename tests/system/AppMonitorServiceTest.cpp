#include "system/AppMonitorService.h"

#include "support/TestDesktop.h"

#include <gtest/gtest.h>

#include <vector>

namespace nocta {
namespace {

using Windows = std::vector<WindowInfo>;

class AppMonitorServiceTest : public TestDesktop {
protected:
    const RunningApplication editor{"com.example.editor", "Editor"};
    const RunningApplication player{"com.example.player", "Player"};

    void SetUp() override {
        plugBuiltIn();
        desktop.workspace.frontmost = editor;
        launch();
    }
    bool isFullscreen() { return appMonitor().isFullscreen.get(); }
    void activateWith(std::optional<Windows> windows) {
        desktop.workspace.windows = std::move(windows);
        desktop.workspace.frontmost = editor;
        desktop.workspace.bringToFront(player);
    }
};

TEST_F(AppMonitorServiceTest, StartsWithTheCurrentApplicationAndWindows) {
    EXPECT_EQ(appMonitor().frontmostApp.get(), editor);
    EXPECT_FALSE(isFullscreen());
    desktop.workspace.windows = Windows{{1920, 1080}};
    restart();
    EXPECT_TRUE(isFullscreen());
}

TEST_F(AppMonitorServiceTest, ActivationIsPublished) {
    desktop.workspace.bringToFront(player);
    EXPECT_EQ(appMonitor().frontmostApp.get(), player);
}

TEST_F(AppMonitorServiceTest, ActivationWithoutAnApplicationChangesNothing) {
    activateWith(Windows{{1920, 1080}});
    ASSERT_TRUE(isFullscreen());
    desktop.workspace.windows = Windows{};
    desktop.workspace.bringToFront(std::nullopt);
    EXPECT_EQ(appMonitor().frontmostApp.get(), player);
    EXPECT_TRUE(isFullscreen());
}

TEST_F(AppMonitorServiceTest, AnyWindowOfExactlyTheMainScreensSizeIsFullScreen) {
    for (const auto& windows : {Windows{{1920, 1080}}, Windows{{300, 200}, {1920, 1080}}}) {
        activateWith(Windows{});
        EXPECT_FALSE(isFullscreen());
        activateWith(windows);
        EXPECT_TRUE(isFullscreen());
    }
}

TEST_F(AppMonitorServiceTest, WindowOfAnotherOrUnknownSizeIsNotFullScreen) {
    for (const auto& window :
         {WindowInfo{1920, 1079}, WindowInfo{1920.5, 1080}, WindowInfo{1080, 1920},
          WindowInfo{2560, 1440}, WindowInfo{std::nullopt, 1080}, WindowInfo{1920, std::nullopt},
          WindowInfo{}}) {
        activateWith(Windows{window});
        EXPECT_FALSE(isFullscreen());
    }
}

TEST_F(AppMonitorServiceTest, UnreadableWindowListDoesNotChangeTheFlag) {
    activateWith(Windows{{1920, 1080}});
    activateWith(std::nullopt);
    EXPECT_TRUE(isFullscreen());
}

TEST_F(AppMonitorServiceTest, NoWindowIsFullScreenWithoutAMainScreen) {
    activateWith(Windows{{1920, 1080}});
    desktop.displays.unplug(builtIn);
    activateWith(Windows{{1920, 1080}});
    EXPECT_FALSE(isFullscreen());
}

TEST_F(AppMonitorServiceTest, NotificationsFromOwnFullScreenWindowsChangeTheFlag) {
    desktop.notificationCenter.post(windowDidEnterFullScreenNotification);
    EXPECT_TRUE(isFullscreen());
    desktop.notificationCenter.post(windowDidExitFullScreenNotification);
    EXPECT_FALSE(isFullscreen());
}

} // namespace
} // namespace nocta
