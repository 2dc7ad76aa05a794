#include "breaks/BreakOverlayController.h"

#include "support/TestDesktop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace nocta {
namespace {

using namespace std::chrono_literals;
using Calls = std::vector<std::string>;

class BreakOverlayControllerTest : public TestDesktop {
protected:
    static constexpr std::int64_t escape = 53;
    static constexpr std::int64_t enter = 36;

    void SetUp() override {
        plugBuiltIn();
        desktop.displays.plug({.id = external, .bounds = {-2560, 100, 2560, 1440}});
        settings().breakTimerEnabled.set(true);
        settings().breakIntervalMinutes.set(1);
        settings().breakDurationSeconds.set(20);
        launch();
        desktop.trace.clear();
    }
    void waitForBreak() {
        while (!std::holds_alternative<Active>(breakTimer().state.get())) {
            desktop.runLoop.advance(1s);
        }
    }
    auto windows() { return desktop.overlayWindows.windows(); }
    bool isGone() { return windows().empty() && views.alive == 0; }
    BreakStatistics totals() { return breakTimer().statistics.get(); }
};

TEST_F(BreakOverlayControllerTest, EveryScreenGetsItsOwnWindow) {
    EXPECT_TRUE(isGone());
    waitForBreak();
    const auto shown = windows();
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_EQ(shown[0].screen.frame, (Rect{0, 0, 1920, 1080}));
    EXPECT_EQ(shown[1].screen.frame, (Rect{-2560, 100, 2560, 1440}));
    for (const auto& window : shown) {
        EXPECT_TRUE(window.isOnScreen);
        EXPECT_EQ(window.style.level, 1000);
        EXPECT_EQ(window.style.collectionBehavior, 257U);
        EXPECT_EQ(window.alpha, 0);
        EXPECT_NE(window.content, nullptr);
    }
    EXPECT_EQ(calls("overlay"), (Calls{"overlay 1 makeKeyAndOrderFront", "overlay 1 fade in",
                                       "overlay 2 makeKeyAndOrderFront", "overlay 2 fade in"}));
    EXPECT_EQ(calls("activate").size(), 2U);
    EXPECT_EQ(desktop.overlayWindows.keyScreen, external);
}

TEST_F(BreakOverlayControllerTest, FadesInAndOutOnTime) {
    waitForBreak();
    desktop.runLoop.advance(200ms);
    EXPECT_NEAR(windows()[0].alpha, 0.5, 1e-6) << "the fade should be half done";
    desktop.runLoop.advance(200ms);
    EXPECT_EQ(windows()[0].alpha, 1);
    EXPECT_EQ(windows()[1].alpha, 1);
    desktop.runLoop.advance(19600ms); // the break is over
    EXPECT_EQ(totals().completedBreaks, 1);
    desktop.runLoop.advance(150ms);
    EXPECT_LT(windows()[0].alpha, 0.75);
    EXPECT_GT(windows()[0].alpha, 0.5) << "the fade should start slowly";
    desktop.runLoop.advance(140ms);
    EXPECT_EQ(windows().size(), 2U);
    desktop.runLoop.advance(10ms);
    EXPECT_TRUE(isGone());
    EXPECT_EQ(calls("overlay 1 orderOut").size(), 1U);
}

TEST_F(BreakOverlayControllerTest, OnlySpaceIsConsumedAndSkips) {
    EXPECT_TRUE(desktop.overlayWindows.press(spaceKeyCode)) << "there should be no key monitor yet";
    waitForBreak();
    for (const auto key : {escape, enter, std::int64_t{0}, std::int64_t{48}}) {
        EXPECT_TRUE(desktop.overlayWindows.press(key)) << key;
    }
    EXPECT_EQ(totals(), BreakStatistics{});
    EXPECT_FALSE(desktop.overlayWindows.press(spaceKeyCode));
    EXPECT_EQ(totals().skippedBreaks, 1);
    EXPECT_FALSE(desktop.overlayWindows.press(spaceKeyCode))
        << "the key monitor should stay installed during the fade-out";
    EXPECT_EQ(totals().totalBreaks, 1);
    desktop.runLoop.advance(300ms);
    EXPECT_TRUE(isGone());
    EXPECT_TRUE(desktop.overlayWindows.press(spaceKeyCode));
}

TEST_F(BreakOverlayControllerTest, SpaceDoesNotSkipUntilThereIsAPauseInTyping) {
    constexpr std::int64_t letter = 0;
    while (windows().empty()) { // the user is typing
        EXPECT_TRUE(desktop.overlayWindows.press(letter)) << "keys should reach the other window";
        desktop.runLoop.advance(90ms);
    }
    for (const auto key : {letter, spaceKeyCode, enter, letter, spaceKeyCode}) {
        EXPECT_FALSE(desktop.overlayWindows.press(key)) << "no window should get the key";
        desktop.runLoop.advance(90ms);
    }
    EXPECT_EQ(totals(), BreakStatistics{});
    desktop.runLoop.advance(410ms);
    EXPECT_FALSE(desktop.overlayWindows.press(spaceKeyCode));
    EXPECT_EQ(totals().skippedBreaks, 1);
}

TEST_F(BreakOverlayControllerTest, SpaceSkipsImmediatelyIfTheUserWasNotTyping) {
    while (windows().empty()) {
        desktop.overlayWindows.press(escape);
        desktop.runLoop.advance(500ms);
    }
    desktop.runLoop.advance(10ms);
    EXPECT_TRUE(desktop.overlayWindows.press(escape))
        << "a key pressed after the cover appeared should not be swallowed";
    desktop.runLoop.advance(10ms);
    EXPECT_FALSE(desktop.overlayWindows.press(spaceKeyCode));
    EXPECT_EQ(totals().skippedBreaks, 1);
}

TEST_F(BreakOverlayControllerTest, ButtonsSkipAndSnooze) {
    waitForBreak();
    views.snooze();
    EXPECT_EQ(totals().snoozedBreaks, 1);
    EXPECT_EQ(breakTimer().state.get(), BreakState(Snoozed{desktop.runLoop.wallNow() + 5min}));
    waitForBreak();
    views.skip();
    EXPECT_EQ(totals().skippedBreaks, 1);
    desktop.runLoop.advance(1s);
    EXPECT_TRUE(isGone());
}

TEST_F(BreakOverlayControllerTest, SecondStartAndEndWhileHiddenDoNothing) {
    desktop.notificationCenter.post(breakDidEndNotification);
    EXPECT_TRUE(calls("overlay").empty());
    waitForBreak();
    desktop.notificationCenter.post(breakDidStartNotification);
    EXPECT_EQ(windows().size(), 2U);
    EXPECT_EQ(views.alive, 2);
}

TEST_F(BreakOverlayControllerTest, StartWhileFadingIsIgnoredAndTheFadeContinues) {
    waitForBreak();
    breakTimer().skip();
    desktop.runLoop.advance(100ms);
    desktop.notificationCenter.post(breakDidStartNotification);
    desktop.notificationCenter.post(breakDidEndNotification); // restarts from the current alpha
    desktop.runLoop.advance(299ms);
    EXPECT_EQ(windows().size(), 2U);
    desktop.runLoop.advance(1ms);
    EXPECT_TRUE(isGone());
    waitForBreak();
    EXPECT_EQ(windows().size(), 2U);
}

TEST_F(BreakOverlayControllerTest, ChangesOfTheScreensTakeEffectAtTheNextBreak) {
    waitForBreak();
    desktop.displays.plug({.id = secondExternal, .bounds = {1920, 0, 1280, 720}});
    desktop.displays.unplug(external);
    EXPECT_EQ(windows().size(), 2U);
    breakTimer().skip();
    desktop.runLoop.advance(300ms);
    EXPECT_TRUE(isGone());
    waitForBreak();
    const auto shown = windows();
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_EQ(shown[1].screen.id, secondExternal);
}

TEST_F(BreakOverlayControllerTest, WorksWithoutScreens) {
    desktop.displays.unplug(builtIn);
    desktop.displays.unplug(external);
    waitForBreak();
    EXPECT_TRUE(windows().empty());
    EXPECT_FALSE(desktop.overlayWindows.press(spaceKeyCode))
        << "the key monitor should be installed";
    EXPECT_EQ(totals().skippedBreaks, 1);
    desktop.runLoop.advance(0s);
    EXPECT_TRUE(desktop.overlayWindows.press(spaceKeyCode)) << "the key monitor should be gone";
    plugBuiltIn();
    waitForBreak();
    EXPECT_EQ(windows().size(), 1U);
}

TEST_F(BreakOverlayControllerTest, StopDuringABreakLeavesTheWindowsUntilALaterBreakEnds) {
    waitForBreak();
    settings().breakTimerEnabled.set(false);
    desktop.runLoop.advance(1h);
    EXPECT_EQ(windows().size(), 2U);

    settings().breakTimerEnabled.set(true);
    waitForBreak();
    EXPECT_EQ(windows().size(), 2U) << "the later break should add no window";
    desktop.runLoop.advance(20s);
    EXPECT_EQ(totals().completedBreaks, 1);
    desktop.runLoop.advance(300ms);
    EXPECT_TRUE(isGone());
}

TEST_F(BreakOverlayControllerTest, SpaceAndBothButtonsCloseTheCoverOfAStoppedBreak) {
    const std::vector<std::function<void()>> ways = {
        [&] { EXPECT_FALSE(desktop.overlayWindows.press(spaceKeyCode)); }, [&] { views.skip(); },
        [&] { views.snooze(); }};
    for (std::size_t way = 0; way < ways.size(); ++way) {
        for (const bool isOnAgain : {false, true}) {
            SCOPED_TRACE(way);
            SCOPED_TRACE(isOnAgain);
            settings().breakTimerEnabled.set(true);
            waitForBreak();
            desktop.runLoop.advance(1s);
            settings().breakTimerEnabled.set(false);
            settings().breakTimerEnabled.set(isOnAgain);
            const auto state = breakTimer().state.get();
            int posted = 0;
            const auto end =
                desktop.notificationCenter.observe(breakDidEndNotification, [&] { ++posted; });
            ways[way]();
            desktop.runLoop.advance(200ms);
            ways[way](); // a fade-out that is already running must not restart
            desktop.runLoop.advance(99ms);
            EXPECT_FALSE(isGone());
            desktop.runLoop.advance(1ms);
            EXPECT_TRUE(isGone());
            EXPECT_EQ(posted, 0);
            EXPECT_EQ(totals(), BreakStatistics{});
            EXPECT_EQ(breakTimer().state.get(), state);
        }
    }
}

TEST_F(BreakOverlayControllerTest, StartingAgainRaisesTheCoverAndShowsNoPopover) {
    waitForBreak();
    desktop.runLoop.advance(1s);
    desktop.trace.clear();
    desktop.application.startAgain();
    EXPECT_EQ(calls(), (Calls{"overlay 1 makeKeyAndOrderFront", "overlay 2 makeKeyAndOrderFront",
                              "activateIgnoringOtherApps"}));
    EXPECT_FALSE(desktop.popover.isShown());
    breakTimer().skip();
    desktop.runLoop.advance(300ms);
    desktop.trace.clear();
    desktop.application.startAgain();
    EXPECT_EQ(calls(), (Calls{"window makeKeyAndOrderFront Welcome to Nocta"}))
        << "after the break the onboarding should come to the front again";
}

TEST_F(BreakOverlayControllerTest, QuittingDuringABreakRemovesTheWindows) {
    waitForBreak();
    quit();
    dropProgram();
    EXPECT_TRUE(isGone());
}

using BreakOverlayShowingTest = TestDesktop;

TEST_F(BreakOverlayShowingTest, IsShowingFromTheStartUntilTheEndOfTheFadeOut) {
    plugBuiltIn();
    BreakOverlayController controller(breakTimer(), desktop.overlayWindows, desktop.application,
                                      views, desktop.notificationCenter, desktop.runLoop);
    std::vector<bool> published;
    const auto subscription = controller.isShowing.subscribe([&](bool isShowing) {
        published.push_back(isShowing);
        EXPECT_TRUE(desktop.overlayWindows.windows().empty())
            << "there should be no window before the break or after it";
        EXPECT_TRUE(desktop.overlayWindows.press(spaceKeyCode)) << "there should be no key monitor";
    });
    EXPECT_FALSE(controller.isShowing.get());
    desktop.notificationCenter.post(breakDidEndNotification);
    EXPECT_TRUE(published.empty());
    desktop.notificationCenter.post(breakDidStartNotification);
    EXPECT_TRUE(controller.isShowing.get());
    desktop.runLoop.advance(10s);
    EXPECT_TRUE(controller.isShowing.get());
    desktop.notificationCenter.post(breakDidEndNotification);
    desktop.runLoop.advance(299ms);
    EXPECT_TRUE(controller.isShowing.get());
    desktop.runLoop.advance(1ms);
    EXPECT_FALSE(controller.isShowing.get());
    EXPECT_EQ(published, (std::vector<bool>{true, false}));
}

} // namespace
} // namespace nocta
