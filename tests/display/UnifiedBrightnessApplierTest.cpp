#include "display/UnifiedBrightnessApplier.h"

#include "support/TestDesktop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace nocta {
namespace {

class UnifiedBrightnessApplierTest : public TestDesktop {
protected:
    void start() {
        displayService().refreshDisplays();
        gamma().start(desktop.notificationCenter);
        brightness().probe();
        desktop.trace.clear();
    }
    std::vector<std::string> backlightCalls() { return calls("setBrightness"); }
    float dimming() { return gamma().currentDimming().at(external); }
};

TEST_F(UnifiedBrightnessApplierTest, CurveWithABacklight) {
    plugBuiltIn();
    plugExternal();
    start();
    struct Row {
        double brightness;
        float backlight;
        float dimming;
        float dimmingWithFullBlack;
    };
    for (const auto& row : {
             Row{1.0, 1.0F, 0.0F, 0.0F},
             Row{0.75, 0.55F, 0.0F, 0.0F},
             Row{0.5, 0.1F, 0.0F, 0.0F},
             Row{0.49, 0.1F, 0.02F, 0.02F},
             Row{0.25, 0.1F, 0.5F, 0.5F},
             Row{0.05, 0.1F, 0.9F, 0.9F},
             Row{0.04, 0.1F, 0.9F, 0.92F},
             Row{0.0, 0.1F, 0.9F, 1.0F},
         }) {
        for (const auto fullBlack : {false, true}) {
            settings().allowFullBlack.set(fullBlack);
            applier().apply(row.brightness);
            EXPECT_FLOAT_EQ(backlight(), row.backlight) << row.brightness;
            const auto expected = fullBlack ? row.dimmingWithFullBlack : row.dimming;
            EXPECT_FLOAT_EQ(gamma().currentDimming().at(builtIn), expected) << row.brightness;
            EXPECT_FLOAT_EQ(gamma().currentDimming().at(external), expected) << row.brightness;
        }
    }
}

TEST_F(UnifiedBrightnessApplierTest, ConversionsAndClampsAreInTheGivenOrder) {
    plugBuiltIn();
    plugExternal();
    start();
    for (int step = 0; step <= 1000; ++step) {
        const auto v = step / 1000.0;
        applier().apply(v);
        if (v >= 0.5) {
            const auto level = static_cast<float>((v - 0.5) * 2 * 0.9 + 0.1);
            ASSERT_EQ(backlight(), std::max(std::min(level, 1.0F), 0.1F)) << v;
            ASSERT_EQ(dimming(), 0.0F);
        } else {
            ASSERT_EQ(backlight(), 0.1F);
            ASSERT_EQ(dimming(), std::min(0.9F, static_cast<float>(1 - 2 * v))) << v;
        }
    }
}

TEST_F(UnifiedBrightnessApplierTest, BacklightIsWrittenBeforeTheTables) {
    plugBuiltIn();
    plugExternal();
    start();
    applier().apply(0.25);
    const auto written = calls("set");
    ASSERT_EQ(written.size(), 3U);
    EXPECT_EQ(written[0], "setBrightness 1 0.1");
    EXPECT_TRUE(written[1].starts_with("setDisplayTransferByTable 1"));
    EXPECT_TRUE(written[2].starts_with("setDisplayTransferByTable 2"));
}

TEST_F(UnifiedBrightnessApplierTest, OnlyExternalDisplaysAreDimmedOverTheWholeRange) {
    plugExternal();
    start();
    for (const auto& [v, expected] :
         {std::pair{1.0, 0.0F}, std::pair{0.75, 0.25F}, std::pair{0.5, 0.5F}, std::pair{0.3, 0.7F},
          std::pair{0.1, 0.9F}, std::pair{0.0, 0.9F}}) {
        applier().apply(v);
        EXPECT_EQ(dimming(), std::min(0.9F, static_cast<float>(1 - v))) << v;
        EXPECT_FLOAT_EQ(dimming(), expected) << v;
    }
    EXPECT_TRUE(backlightCalls().empty());
}

TEST_F(UnifiedBrightnessApplierTest, ChangeOfFullBlackWaitsForTheNextCall) {
    plugExternal();
    start();
    applier().apply(0.0);
    settings().allowFullBlack.set(true);
    EXPECT_EQ(dimming(), 0.9F);
    applier().apply(0.0);
    EXPECT_EQ(dimming(), 1.0F);
}

TEST_F(UnifiedBrightnessApplierTest, UnreadableBacklightIsLeftAloneAndTheSplitStays) {
    plugBuiltIn();
    plugExternal();
    desktop.displays.backlightReadFails = true;
    desktop.displays.display(builtIn).backlight = 0.8F;
    start();
    applier().apply(0.75);
    EXPECT_EQ(dimming(), 0.0F) << "no software fallback in the upper half";
    applier().apply(0.25);
    EXPECT_EQ(dimming(), 0.5F);
    EXPECT_EQ(backlight(), 0.8F);
    EXPECT_TRUE(backlightCalls().empty());
}

TEST_F(UnifiedBrightnessApplierTest, EveryBuiltInDisplayIsDrivenInListOrder) {
    desktop.displays.plug({.id = 5, .isBuiltIn = true});
    plugExternal();
    desktop.displays.plug({.id = 4, .isBuiltIn = true});
    start();
    applier().apply(1.0);
    EXPECT_EQ(backlightCalls(),
              (std::vector<std::string>{"setBrightness 5 1", "setBrightness 4 1"}));
}

TEST_F(UnifiedBrightnessApplierTest, FailingBacklightWriteIsIgnored) {
    plugBuiltIn();
    plugExternal();
    start();
    desktop.displays.backlightWriteFails = true;
    applier().apply(0.25);
    EXPECT_EQ(dimming(), 0.5F);
}

TEST_F(UnifiedBrightnessApplierTest, ValuesOutsideTheRangeAreLimitedByTheClampsAlone) {
    plugBuiltIn();
    plugExternal();
    start();
    applier().apply(1.5);
    EXPECT_EQ(backlight(), 1.0F);
    EXPECT_EQ(dimming(), 0.0F);
    applier().apply(-3);
    EXPECT_EQ(backlight(), 0.1F);
    EXPECT_EQ(dimming(), 0.9F);
    desktop.displays.unplug(builtIn);
    applier().apply(7);
    EXPECT_EQ(dimming(), 0.0F);
}

TEST_F(UnifiedBrightnessApplierTest, TheListIsReadFreshAtEachCall) {
    plugBuiltIn();
    start();
    plugExternal();
    applier().apply(0.25);
    EXPECT_EQ(dimming(), 0.5F);
}

} // namespace
} // namespace nocta
