#include "system/ShortcutsManager.h"

#include "support/TestDesktop.h"

#include <gtest/gtest.h>

namespace nocta {
namespace {

class ShortcutsManagerTest : public TestDesktop {
protected:
    double value() { return settings().unifiedBrightness.get(); }
};

TEST_F(ShortcutsManagerTest, KeysChangeTheBrightnessBySixteenths) {
    shortcuts().startMonitoring();
    for (const auto expected : {0.6875, 0.625, 0.5625, 0.5, 0.4375}) {
        desktop.keyboard.pressKey(144);
        EXPECT_EQ(value(), expected);
    }
    desktop.keyboard.pressKey(145);
    EXPECT_EQ(value(), 0.5);
}

TEST_F(ShortcutsManagerTest, BrightnessStaysWithinItsRange) {
    shortcuts().startMonitoring();
    settings().unifiedBrightness.set(1.0);
    desktop.keyboard.pressKey(145);
    EXPECT_EQ(value(), 1.0);
    settings().unifiedBrightness.set(0.03);
    desktop.keyboard.pressKey(144);
    EXPECT_EQ(value(), 0.0);
}

TEST_F(ShortcutsManagerTest, OtherKeysChangeNothing) {
    shortcuts().startMonitoring();
    for (const auto key : {0, 49, 53, 107, 113, 143, 146, -1}) {
        desktop.keyboard.pressKey(key);
    }
    EXPECT_EQ(value(), 0.75);
}

TEST_F(ShortcutsManagerTest, EachPressIsAppliedTwiceWithTheSameValue) {
    plugExternal();
    launch();
    desktop.trace.clear();
    desktop.keyboard.pressBrightnessDown();
    const auto written = calls("set");
    ASSERT_EQ(written.size(), 3U);
    EXPECT_TRUE(written[0].starts_with("setDisplayTransferByTable"))
        << "the subscription should write the tables first";
    EXPECT_EQ(written[1], "setDouble unifiedBrightness")
        << "the setting should be stored before the direct call";
    EXPECT_EQ(written[2], written[0]) << "the direct call should write the same tables again";
    EXPECT_FLOAT_EQ(shownDimming(external), 1 - 0.6875F);
}

TEST_F(ShortcutsManagerTest, PressIsAppliedWithoutAnySubscription) {
    plugExternal();
    gamma().start(desktop.notificationCenter);
    shortcuts().startMonitoring();
    desktop.keyboard.pressKey(144);
    EXPECT_EQ(calls("setDisplayTransferByTable").size(), 1U);
}

TEST_F(ShortcutsManagerTest, KeysIgnoreTheFullBlackSetting) {
    settings().allowFullBlack.set(false);
    settings().unifiedBrightness.set(0.0625);
    shortcuts().startMonitoring();
    desktop.keyboard.pressKey(144);
    EXPECT_EQ(value(), 0.0);
}

TEST_F(ShortcutsManagerTest, MonitoringTwiceInstallsOneTap) {
    EXPECT_FALSE(shortcuts().isMonitoring());
    shortcuts().startMonitoring();
    shortcuts().startMonitoring();
    EXPECT_TRUE(shortcuts().isMonitoring());
    EXPECT_EQ(calls("createKeyDownTap").size(), 1U);
}

TEST_F(ShortcutsManagerTest, RefusedTapIsReportedOnStandardOutput) {
    desktop.keyboard.tapIsRefused = true;
    ::testing::internal::CaptureStdout();
    shortcuts().startMonitoring();
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Failed to create event tap\n");
    EXPECT_FALSE(shortcuts().isMonitoring());
    desktop.keyboard.pressKey(144);
    EXPECT_EQ(value(), 0.75);
}

} // namespace
} // namespace nocta
