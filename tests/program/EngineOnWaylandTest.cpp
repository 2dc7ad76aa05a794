#include "backends/linux/wayland/WaylandSession.h"
#include "support/EngineTable.h"
#include "support/TestDesktop.h"

#include <string>

namespace nocta {
namespace {

/// The whole program on a virtual desktop, except that its displays are those of a real sway.
class EngineOnWaylandTest : public TestDesktop {
protected:
    Sway sway;
    WaylandSession session;
    WlrGammaOutput gammaOutput{session.connection, session.displays, session.runLoop};
    Desktop mixed{.bundle = desktop.bundle,
                  .runLoop = desktop.runLoop,
                  .notificationCenter = session.notificationCenter,
                  .userDefaults = desktop.userDefaults,
                  .uuidSource = desktop.uuidSource,
                  .displays = session.displays,
                  .gammaOutput = gammaOutput,
                  .backlight = desktop.displays,
                  .keyEvents = desktop.keyboard,
                  .locationManager = desktop.location,
                  .loginItem = desktop.loginItem,
                  .dynamicLibraries = desktop.filter,
                  .displayFilter = desktop.filter,
                  .workspace = desktop.workspace,
                  .userNotificationCenter = desktop.notifications,
                  .urlSession = desktop.urlSession,
                  .updater = desktop.updater,
                  .overlayWindows = desktop.overlayWindows,
                  .statusBar = desktop.statusBar,
                  .popover = desktop.popover,
                  .appWindows = desktop.appWindows,
                  .application = desktop.application};

    Desktop& ports() override { return mixed; }

    void SetUp() override {
        if (!Sway::canLogGamma()) {
            GTEST_SKIP() << "gamma tables cannot be read with this version of wlroots";
        }
        settings().unifiedBrightness.set(1);
        settings().autoWarmthEnabled.set(false);
        settings().warmthLevel.set(1);
        launch();
    }
    void TearDown() override { dropProgram(); }

    std::vector<std::uint16_t> shown(const std::string& output) {
        session.settle();
        const auto events = sway.gammaOf(output);
        return events.empty() ? std::vector<std::uint16_t>() : events.back();
    }
};

TEST_F(EngineOnWaylandTest, TablesFollowTheSettings) {
    for (const auto brightness : {0.5, 0.3, 0.9}) {
        settings().unifiedBrightness.set(brightness);
        applier().apply(brightness);
        EXPECT_TRUE(isEngineTable(shown("HEADLESS-1"), brightness, 2700)) << brightness;
    }
    settings().warmthLevel.set(0.5);
    EXPECT_TRUE(isEngineTable(shown("HEADLESS-1"), 0.9, 4600));
}

TEST_F(EngineOnWaylandTest, AddedOutputIsUpdatedAtTheNextChange) {
    sway.addOutput();
    ASSERT_TRUE(serveUntil([&] { return session.displays.ids().size() == 2; }));
    EXPECT_TRUE(shown("HEADLESS-2").empty());
    settings().warmthLevel.set(0.5);
    EXPECT_TRUE(isEngineTable(shown("HEADLESS-1"), 1, 4600));
    EXPECT_TRUE(isEngineTable(shown("HEADLESS-2"), 1, 4600));
}

TEST_F(EngineOnWaylandTest, QuittingRestoresEveryOutput) {
    sway.addOutput();
    ASSERT_TRUE(serveUntil([&] { return session.displays.ids().size() == 2; }));
    settings().warmthLevel.set(0.5);
    EXPECT_FALSE(shown("HEADLESS-2").empty());
    quit();
    EXPECT_TRUE(shown("HEADLESS-1").empty());
    EXPECT_TRUE(shown("HEADLESS-2").empty());
    EXPECT_EQ(sway.gammaOf("HEADLESS-2").size(), 2U);
}

} // namespace
} // namespace nocta
