#include "app/AppDelegate.h"

#include "base/Calendar.h"
#include "support/TestDesktop.h"
#include "support/TimeZone.h"

#include <gtest/gtest.h>

#include <chrono>

namespace nocta {
namespace {

using namespace std::chrono_literals;
using Calls = std::vector<std::string>;

class AppDelegateTest : public TestDesktop {
protected:
    TimeZone zone{zone::utc}; // the virtual desktop starts at 9:00

    /// Turns automatic warmth off, so that the color does not follow the sun.
    void SetUp() override {
        settings().autoWarmthEnabled.set(false);
        settings().warmthLevel.set(0);
    }
};

TEST_F(AppDelegateTest, NothingIsShownOrWrittenBeforeLaunch) {
    plugBuiltIn();
    delegate();
    EXPECT_FALSE(desktop.statusBar.hasItem());
    EXPECT_TRUE(calls("setDisplayTransferByTable").empty());
    EXPECT_TRUE(calls("setBrightness").empty());
    EXPECT_TRUE(calls("createKeyDownTap").empty());
}

TEST_F(AppDelegateTest, LaunchCallsTheDesktopInOrder) {
    plugBuiltIn();
    plugExternal();
    settings().unifiedBrightness.set(0.03);
    delegate();
    desktop.trace.clear();
    launch();
    // The first tables use only the rule for the lower half. Then the backlight is set, and the
    // tables are limited to the faint glow.
    EXPECT_EQ(
        calls(),
        (Calls{"startUpdater", "statusItem", "setImage eye", "popover setContentSize 300 280",
               "popover setAnimates true", "getActiveDisplayList 0", "getActiveDisplayList 2",
               "getActiveDisplayList 0", "getActiveDisplayList 2", "getBrightness 1",
               "addGlobalMonitorForSystemDefinedEvents", "observeDidActivateApplication",
               "frontmostApplication", "createKeyDownTap", "observeDidActivateApplication",
               "frontmostApplication", "copyWindowInfo", "requestAuthorization 6",
               "setDisplayTransferByTable 1 top 0.06 0.05979 0.05883",
               "setDisplayTransferByTable 2 top 0.06 0.05979 0.05883", "getActiveDisplayList 0",
               "getActiveDisplayList 2", "getActiveDisplayList 0", "getActiveDisplayList 2",
               "setBrightness 1 0.1", "setDisplayTransferByTable 1 top 0.1 0.09965 0.09806",
               "setDisplayTransferByTable 2 top 0.1 0.09965 0.09806",
               // then the stored warmth
               "setDisplayTransferByTable 1 top 0.1 0.09965 0.09806",
               "setDisplayTransferByTable 2 top 0.1 0.09965 0.09806",
               // and the first launch, after the services have started
               "window makeKeyAndOrderFront Welcome to Nocta", "activateIgnoringOtherApps"}));
}

/// Only services that call the desktop when they are created appear in the trace.
TEST_F(AppDelegateTest, ServicesAreCreatedInOrder) {
    dropProgram(); // the fixture's program has already read the settings
    plugBuiltIn();
    displayService().refreshDisplays(); // so that the brightness controller can probe a display
    desktop.trace.clear();
    delegate();
    Calls made;
    for (const auto& call : calls()) {
        for (const auto* const first :
             {"registerDefaults", "getBrightness", "open", "dataForKey", "setLocationDelegate",
              "setNotificationCategories", "loginItem"}) {
            if (call.starts_with(first)) { // ignores the number of defaults
                made.push_back(call.starts_with("registerDefaults") ? first : call);
            }
        }
    }
    EXPECT_EQ(made,
              (Calls{"registerDefaults", "getBrightness 1",
                     "open /usr/lib/libUniversalAccess.dylib", "dataForKey breakStatistics",
                     "setLocationDelegate", "setNotificationCategories", "loginItem status"}));
}

TEST_F(AppDelegateTest, ScreenChangeReachesTheDisplayListBeforeTheGammaController) {
    plugBuiltIn();
    launch();
    std::vector<std::size_t> known;
    const auto subscription =
        displayService().displays.subscribe([&](const std::vector<DisplayInfo>& displays) {
            known = {displays.size(), gamma().displays().size()};
        });
    plugExternal();
    EXPECT_EQ(known, (std::vector<std::size_t>{2, 1}));
    EXPECT_EQ(gamma().displays().size(), 2U) << "the gamma controller should be updated next";
}

TEST_F(AppDelegateTest, NextPollFindsAMeetingWithoutANotification) {
    launch();
    desktop.workspace.frontmost = RunningApplication{"us.zoom.xos", "Zoom"};
    desktop.runLoop.advance(4999ms);
    EXPECT_FALSE(meetingDetector().isInMeeting.get());
    desktop.runLoop.advance(1ms);
    EXPECT_TRUE(meetingDetector().isInMeeting.get());
}

TEST_F(AppDelegateTest, OnboardingWindowFloatsAndHasAFixedSize) {
    launch();
    const auto windows = desktop.appWindows.windows();
    ASSERT_EQ(windows.size(), 1U);
    EXPECT_EQ(windows[0].title, "Welcome to Nocta");
    EXPECT_EQ(windows[0].style.width, 500);
    EXPECT_EQ(windows[0].style.height, 580);
    EXPECT_EQ(windows[0].style.styleMask, 3U);
    EXPECT_EQ(windows[0].style.level, 3);
}

TEST_F(AppDelegateTest, CompletedOnboardingClosesAndIsNotShownAgain) {
    launch();
    EXPECT_TRUE(settings().isFirstLaunch.get());
    views.completeOnboarding();
    EXPECT_FALSE(settings().isFirstLaunch.get());
    desktop.runLoop.advance(0s);
    EXPECT_TRUE(desktop.appWindows.windows().empty());
    settings().resetToDefaults();
    restart();
    EXPECT_TRUE(desktop.appWindows.windows().empty());
}

TEST_F(AppDelegateTest, PopoverFollowsTheOnboardingIfThereIsNoStatusBar) {
    desktop.statusBar.isShown = false;
    launch();
    views.completeOnboarding();
    EXPECT_FALSE(desktop.popover.isShown()) << "the window should close first";
    desktop.runLoop.advance(0s);
    EXPECT_TRUE(desktop.appWindows.windows().empty());
    EXPECT_TRUE(desktop.popover.isShown());
}

TEST_F(AppDelegateTest, PopoverFollowsAnOnboardingThatIsClosedEarlyWithoutAStatusBar) {
    desktop.statusBar.isShown = false;
    launch();
    desktop.appWindows.close("Welcome to Nocta");
    EXPECT_TRUE(desktop.popover.isShown());
}

TEST_F(AppDelegateTest, PopoverStaysClosedAfterTheOnboardingIfThereIsAStatusBar) {
    launch();
    views.completeOnboarding();
    desktop.runLoop.advance(0s);
    EXPECT_FALSE(desktop.popover.isShown());
}

TEST_F(AppDelegateTest, ClosedOnboardingIsShownAtTheNextLaunch) {
    launch();
    desktop.appWindows.close("Welcome to Nocta");
    EXPECT_TRUE(desktop.appWindows.windows().empty());
    restart();
    EXPECT_TRUE(desktop.appWindows.isOnScreen("Welcome to Nocta"));
}

TEST_F(AppDelegateTest, StartingAgainShowsTheOpenOnboarding) {
    launch();
    desktop.trace.clear();
    desktop.application.startAgain();
    EXPECT_EQ(calls(), Calls{"window makeKeyAndOrderFront Welcome to Nocta"});
}

TEST_F(AppDelegateTest, PreferencesComeToTheFrontAndCanBeReopened) {
    launch();
    desktop.statusBar.click();
    desktop.trace.clear();
    views.showPreferences();
    views.showPreferences();
    EXPECT_EQ(calls(),
              (Calls{"activateIgnoringOtherApps", "window makeKeyAndOrderFront Preferences",
                     "activateIgnoringOtherApps", "window makeKeyAndOrderFront Preferences"}));
    EXPECT_TRUE(desktop.appWindows.isOnScreen("Preferences"));
    const auto alive = views.othersAlive;
    desktop.appWindows.close("Preferences");
    EXPECT_FALSE(desktop.appWindows.isOnScreen("Preferences"));
    EXPECT_EQ(views.othersAlive, alive - 1) << "the view should be destroyed with the window";
    views.showPreferences();
    EXPECT_TRUE(desktop.appWindows.isOnScreen("Preferences"));
}

TEST_F(AppDelegateTest, DesktopShortcutOpensThePreferences) {
    launch();
    desktop.trace.clear();
    desktop.application.pressPreferencesKey();
    EXPECT_EQ(calls(),
              (Calls{"activateIgnoringOtherApps", "window makeKeyAndOrderFront Preferences"}));
}

TEST_F(AppDelegateTest, FirstWriteAtLaunchIgnoresTheBacklightAndTheExternalRule) {
    plugExternal();
    settings().unifiedBrightness.set(0.75);
    launch();
    const auto written = calls("setDisplayTransferByTable");
    ASSERT_EQ(written.size(), 3U);
    EXPECT_TRUE(written[0].starts_with("setDisplayTransferByTable 2 top 1 "));
    EXPECT_TRUE(written[1].starts_with("setDisplayTransferByTable 2 top 0.75 "));
}

TEST_F(AppDelegateTest, HardwareIsProbedAfterTheDisplayListIsRead) {
    plugBuiltIn();
    launch();
    EXPECT_TRUE(brightness().isAvailable());
    EXPECT_FLOAT_EQ(backlight(), 0.55F);
}

TEST_F(AppDelegateTest, ServicesStartOnce) {
    plugBuiltIn();
    launch();
    delegate().applicationDidFinishLaunching();
    EXPECT_EQ(calls("createKeyDownTap").size(), 1U);
    desktop.trace.clear();
    settings().unifiedBrightness.set(0.9);
    EXPECT_EQ(calls("setBrightness").size(), 1U) << "there should be only one subscription";
}

TEST_F(AppDelegateTest, SettingsReachTheScreenThroughTheirSubscriptions) {
    plugBuiltIn();
    launch();
    settings().unifiedBrightness.set(0.25);
    EXPECT_FLOAT_EQ(shownDimming(builtIn), 0.5F);
    EXPECT_FLOAT_EQ(backlight(), 0.1F);
}

TEST_F(AppDelegateTest, SubscriptionsSkipTheCurrentValue) {
    launch();
    EXPECT_EQ(calls("setImage").size(), 1U) << "the icon should be drawn once, at launch";
}

TEST_F(AppDelegateTest, IconFollowsItsSettingAndIsRedrawnByEveryWrite) {
    settings().menuBarIcon.set(MenuBarIcon::leaf);
    launch();
    EXPECT_EQ(desktop.statusBar.symbolName(), "leaf");
    EXPECT_EQ(desktop.statusBar.accessibilityDescription(), "Nocta");
    settings().menuBarIcon.set(MenuBarIcon::sparkles);
    settings().menuBarIcon.set(MenuBarIcon::sparkles);
    EXPECT_EQ(calls("setImage"),
              (Calls{"setImage leaf", "setImage sparkles", "setImage sparkles"}));
}

TEST_F(AppDelegateTest, ClickTogglesThePopoverWithANewViewEachTime) {
    launch();
    EXPECT_FALSE(desktop.popover.isShown());
    desktop.statusBar.click();
    EXPECT_TRUE(desktop.popover.isShown());
    EXPECT_EQ(views.popoversMade, 1);
    desktop.statusBar.click();
    EXPECT_FALSE(desktop.popover.isShown());
    EXPECT_EQ(views.alive, 0) << "the view should be destroyed when the popover closes";
    desktop.statusBar.click();
    EXPECT_EQ(views.popoversMade, 2);
    EXPECT_EQ(views.alive, 1);
}

TEST_F(AppDelegateTest, PopoverIsTransient) {
    launch();
    desktop.statusBar.click();
    desktop.popover.clickElsewhere();
    EXPECT_FALSE(desktop.popover.isShown());
}

TEST_F(AppDelegateTest, StartingAgainShowsThePopoverAndLeavesItOpen) {
    settings().isFirstLaunch.set(false);
    launch();
    desktop.application.startAgain();
    EXPECT_TRUE(desktop.popover.isShown());
    desktop.application.startAgain();
    EXPECT_TRUE(desktop.popover.isShown());
    EXPECT_EQ(views.popoversMade, 1);
}

TEST_F(AppDelegateTest, WithoutAStatusItemEverythingElseWorks) {
    plugExternal();
    desktop.statusBar.isFull = true;
    launch();
    delegate().togglePopover();
    EXPECT_FALSE(desktop.popover.isShown());
    settings().menuBarIcon.set(MenuBarIcon::leaf);
    settings().unifiedBrightness.set(0.5);
    EXPECT_EQ(shownDimming(external), 0.5F);
}

TEST_F(AppDelegateTest, QuitGivesTheScreenBackForgetsTheValuesAndSynchronizes) {
    plugBuiltIn();
    plugExternal();
    launch();
    settings().unifiedBrightness.set(0.1);
    gamma().setTemperature(2700);
    gamma().setSaturation(0.0F);
    desktop.trace.clear();
    quit();
    EXPECT_EQ(calls(), (Calls{"displayRestoreColorSyncSettings", "synchronize"}));
    EXPECT_TRUE(desktop.displays.display(builtIn).red.empty());
    EXPECT_TRUE(desktop.displays.display(external).red.empty());
    EXPECT_TRUE(gamma().currentDimming().empty());
    EXPECT_TRUE(gamma().currentTemperature().empty());
    EXPECT_TRUE(gamma().currentSaturation().empty());
}

TEST_F(AppDelegateTest, DesktopIsNotCalledAfterQuit) {
    plugBuiltIn();
    launch();
    quit();
    desktop.trace.clear();
    desktop.runLoop.advance(24h);
    EXPECT_EQ(calls(), Calls{});
}

TEST_F(AppDelegateTest, StoredBrightnessIsAppliedAtTheNextLaunch) {
    plugExternal();
    launch();
    settings().unifiedBrightness.set(0.4);
    restart();
    EXPECT_FLOAT_EQ(shownDimming(external), 0.6F);
}

TEST_F(AppDelegateTest, NewDisplayIsDimmedAtTheNextChange) {
    plugBuiltIn();
    launch();
    settings().unifiedBrightness.set(0.25);
    plugExternal();
    EXPECT_TRUE(desktop.displays.display(external).red.empty());
    EXPECT_EQ(displayService().displays.get().size(), 2U);
    settings().unifiedBrightness.set(0.25);
    EXPECT_FLOAT_EQ(shownDimming(external), 0.5F);
}

TEST_F(AppDelegateTest, ProgramStartsWithoutADisplay) {
    launch();
    settings().unifiedBrightness.set(0.2);
    plugExternal();
    settings().unifiedBrightness.set(0.3);
    EXPECT_FLOAT_EQ(shownDimming(external), 0.7F);
}

TEST_F(AppDelegateTest, StoredWarmthIsAppliedAtLaunchInManualMode) {
    plugExternal();
    settings().warmthLevel.set(0.5);
    launch();
    EXPECT_EQ(gamma().currentTemperature().at(external), 4600);
    settings().warmthLevel.set(1);
    EXPECT_EQ(gamma().currentTemperature().at(external), 2700);
}

TEST_F(AppDelegateTest, AutomaticWarmthStartsBeforeTheBrightnessIsApplied) {
    plugExternal();
    settings().autoWarmthEnabled.set(true);
    settings().colorTemperatureDay.set(3000);
    settings().unifiedBrightness.set(0.4);
    launch();
    const auto written = calls("setDisplayTransferByTable");
    ASSERT_EQ(written.size(), 3U);
    EXPECT_TRUE(written[0].starts_with("setDisplayTransferByTable 2 top 1 "))
        << "the first tables should not be dimmed yet";
    EXPECT_EQ(gamma().currentTemperature().at(external), 3000);
    EXPECT_FLOAT_EQ(shownDimming(external), 0.6F);
}

TEST_F(AppDelegateTest, ScreenWarmsAtSunset) {
    plugExternal();
    settings().autoWarmthEnabled.set(true);
    launch();
    EXPECT_EQ(gamma().currentTemperature().at(external), 6500);
    desktop.runLoop.advance(9h + 30min); // 18:30, the middle of the transition
    EXPECT_EQ(gamma().currentTemperature().at(external), 4600);
    desktop.runLoop.advance(1h);
    EXPECT_EQ(gamma().currentTemperature().at(external), 2700);
}

TEST_F(AppDelegateTest, StoredGrayscaleIsTurnedOnAtLaunchWithoutAFade) {
    plugExternal();
    settings().grayscaleEnabled.set(true);
    launch();
    EXPECT_TRUE(desktop.filter.isOn);
    EXPECT_TRUE(gamma().currentSaturation().empty());
    settings().grayscaleEnabled.set(false);
    EXPECT_FALSE(desktop.filter.isOn);
    EXPECT_EQ(gamma().currentSaturation().at(external), 0.0F);
    settings().grayscaleEnabled.set(true);
    EXPECT_FALSE(desktop.filter.isOn) << "the filter should be off after the fade";
    desktop.runLoop.advance(300ms);
    EXPECT_TRUE(desktop.filter.isOn);
}

TEST_F(AppDelegateTest, TurningLocationOnAsksTheUser) {
    launch();
    EXPECT_TRUE(calls("requestWhenInUseAuthorization").empty());
    settings().locationEnabled.set(true);
    EXPECT_TRUE(desktop.location.isAsking);
    settings().locationEnabled.set(false);
    EXPECT_EQ(calls("requestWhenInUseAuthorization").size(), 1U);
}

TEST_F(AppDelegateTest, FirstLocationSetsTheTimesAndStopsTheUpdates) {
    launch();
    settings().locationEnabled.set(true);
    desktop.location.answer(AuthorizationStatus::authorized);
    EXPECT_TRUE(settings().locationEnabled.get());
    EXPECT_FALSE(desktop.location.isAsking);
    EXPECT_EQ(calls("startUpdatingLocation").size(), 1U);
    desktop.location.send(Location{52.52, 13.405});
    EXPECT_FALSE(desktop.location.isUpdating);
    EXPECT_EQ(Calendar::dayOf(*schedule().sunriseTime.get()),
              Calendar::dayOf(desktop.runLoop.wallNow()));
}

TEST_F(AppDelegateTest, RefusingLocationTurnsTheSettingOff) {
    launch();
    settings().locationEnabled.set(true);
    desktop.location.answer(AuthorizationStatus::denied);
    EXPECT_FALSE(settings().locationEnabled.get());
}

} // namespace
} // namespace nocta
