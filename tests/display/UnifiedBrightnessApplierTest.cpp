#include "display/UnifiedBrightnessApplier.h"

#include "support/TestDesktop.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <string>
#include <utility>
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

TEST_F(UnifiedBrightnessApplierTest, BacklightAndDimmingFollowTheCurve) {
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

/// The expected bits were calculated by hand: the formulas were evaluated in decimal, and the
/// results were rounded to double precision and then to single precision.
TEST_F(UnifiedBrightnessApplierTest, LevelsAreRoundedToSinglePrecisionOnce) {
    plugBuiltIn();
    plugExternal();
    start();
    struct Row {
        double brightness;
        std::uint32_t backlight;
        std::uint32_t dimming;
    };
    for (const auto& row : {
             Row{1.0, 0x3F800000, 0x00000000},   Row{0.95, 0x3F68F5C3, 0x00000000},
             Row{0.892, 0x3F4E3BCD, 0x00000000}, Row{0.875, 0x3F466666, 0x00000000},
             Row{0.835, 0x3F33F7CF, 0x00000000}, Row{0.782, 0x3F1B8BAC, 0x00000000},
             Row{0.75, 0x3F0CCCCD, 0x00000000},  Row{0.729, 0x3F031F8A, 0x00000000},
             Row{0.691, 0x3EE339C1, 0x00000000}, Row{0.658, 0x3EC4D014, 0x00000000},
             Row{0.623, 0x3EA48E8A, 0x00000000}, Row{0.586, 0x3E827525, 0x00000000},
             Row{0.557, 0x3E4F7660, 0x00000000}, Row{0.529, 0x3E1BDA51, 0x00000000},
             Row{0.501, 0x3DD07C85, 0x00000000}, Row{0.474, 0x3DCCCCCD, 0x3D54FDF4},
             Row{0.421, 0x3DCCCCCD, 0x3E21CAC1}, Row{0.353, 0x3DCCCCCD, 0x3E96872B},
             Row{0.263, 0x3DCCCCCD, 0x3EF2B021}, Row{0.059, 0x3DCCCCCD, 0x3F61CAC1},
             Row{0.05, 0x3DCCCCCD, 0x3F666666},  Row{0.01, 0x3DCCCCCD, 0x3F666666},
         }) {
        applier().apply(row.brightness);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(backlight()), row.backlight) << row.brightness;
        EXPECT_EQ(std::bit_cast<std::uint32_t>(dimming()), row.dimming) << row.brightness;
    }
}

TEST_F(UnifiedBrightnessApplierTest, BacklightRisesAndDimmingFallsEvenly) {
    plugBuiltIn();
    plugExternal();
    start();
    settings().allowFullBlack.set(true);
    for (int thousandth = 0; thousandth <= 1000; ++thousandth) {
        applier().apply(thousandth / 1000.0);
        // The upper half maps to 100–1000 thousandths of the backlight.
        const auto level = thousandth < 500 ? 100.0 : 100 + (thousandth - 500) * 1.8;
        ASSERT_NEAR(backlight(), level / 1000, 1e-7) << thousandth;
        const auto expected = thousandth < 500 ? 1000 - 2 * thousandth : 0;
        ASSERT_NEAR(dimming(), expected / 1000.0, 1e-7) << thousandth;
    }
}

TEST_F(UnifiedBrightnessApplierTest, BacklightIsWrittenBeforeTheTables) {
    plugBuiltIn();
    plugExternal();
    start();
    for (const auto& [brightness, backlightCall] :
         {std::pair{0.25, "setBrightness 1 0.1"}, std::pair{0.75, "setBrightness 1 0.55"}}) {
        desktop.trace.clear();
        applier().apply(brightness);
        const auto written = calls("set");
        ASSERT_EQ(written.size(), 3U) << brightness;
        EXPECT_EQ(written[0], backlightCall);
        EXPECT_TRUE(written[1].starts_with("setDisplayTransferByTable 1")) << brightness;
        EXPECT_TRUE(written[2].starts_with("setDisplayTransferByTable 2")) << brightness;
    }
}

TEST_F(UnifiedBrightnessApplierTest, OnlyExternalDisplaysAreDimmedOverTheWholeRange) {
    plugExternal();
    start();
    for (const auto& [v, expected] :
         {std::pair{1.0, 0.0F}, std::pair{0.75, 0.25F}, std::pair{0.5, 0.5F}, std::pair{0.3, 0.7F},
          std::pair{0.1, 0.9F}, std::pair{0.0, 0.9F}}) {
        applier().apply(v);
        EXPECT_FLOAT_EQ(dimming(), expected) << v;
    }
    EXPECT_TRUE(backlightCalls().empty());
}

TEST_F(UnifiedBrightnessApplierTest, FullBlackTakesEffectAtTheNextCall) {
    plugExternal();
    start();
    applier().apply(0.0);
    settings().allowFullBlack.set(true);
    EXPECT_EQ(dimming(), 0.9F);
    applier().apply(0.0);
    EXPECT_EQ(dimming(), 1.0F);
}

TEST_F(UnifiedBrightnessApplierTest, UnreadableBacklightIsNotWrittenAndTheRangeStaysSplit) {
    plugBuiltIn();
    plugExternal();
    desktop.displays.backlightReadFails = true;
    desktop.displays.display(builtIn).backlight = 0.8F;
    start();
    applier().apply(0.75);
    EXPECT_EQ(dimming(), 0.0F) << "the upper half should not dim instead";
    applier().apply(0.25);
    EXPECT_EQ(dimming(), 0.5F);
    EXPECT_EQ(backlight(), 0.8F);
    EXPECT_TRUE(backlightCalls().empty());
}

TEST_F(UnifiedBrightnessApplierTest, EveryBuiltInDisplayIsSetInListOrder) {
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

TEST_F(UnifiedBrightnessApplierTest, ValuesOutsideTheRangeAreLimitedOnlyByTheClamps) {
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

TEST_F(UnifiedBrightnessApplierTest, ListIsReadAgainAtEachCall) {
    plugBuiltIn();
    start();
    plugExternal();
    applier().apply(0.25);
    EXPECT_EQ(dimming(), 0.5F);
}

} // namespace
} // namespace nocta
