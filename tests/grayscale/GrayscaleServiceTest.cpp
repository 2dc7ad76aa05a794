#include "grayscale/GrayscaleService.h"

#include "support/TestDesktop.h"

#include <gtest/gtest.h>

#include <chrono>

namespace nocta {
namespace {

using namespace std::chrono_literals;
using Calls = std::vector<std::string>;

class GrayscaleServiceTest : public TestDesktop {
protected:
    void SetUp() override {
        plugExternal();
        gamma().start(desktop.notificationCenter);
    }
    float saturation() { return gamma().currentSaturation().at(external); }

    /// Returns the calls that switch the filter, without the table writes in between.
    Calls switches() {
        Calls found;
        for (const auto& call : calls()) {
            if (call.starts_with("setType") || call.starts_with("setCategory") ||
                call.starts_with("universal")) {
                found.push_back(call);
            }
        }
        return found;
    }
};

const Calls on = {"setType 1 1", "setCategoryEnabled 1 1", "universalAccessDStart 8"};
const Calls off = {"setCategoryEnabled 1 0", "universalAccessDStart 8"};

TEST_F(GrayscaleServiceTest, ConstructionLooksForTheEntryPointAndTheFilter) {
    EXPECT_TRUE(grayscale().isAvailable());
    EXPECT_FALSE(grayscale().isEnabled());
    EXPECT_EQ(calls("open"), Calls{"open /usr/lib/libUniversalAccess.dylib"});
    EXPECT_EQ(calls("symbol"), Calls{"symbol _UniversalAccessDStart"});
    EXPECT_TRUE(calls("close").empty());
}

TEST_F(GrayscaleServiceTest, FilterThatIsAlreadyOnIsDetected) {
    desktop.filter.isOn = true;
    desktop.filter.type = 1;
    EXPECT_TRUE(grayscale().isEnabled());
}

TEST_F(GrayscaleServiceTest, FilterOfAnotherTypeIsNotGrayscale) {
    desktop.filter.isOn = true;
    desktop.filter.type = 2;
    EXPECT_FALSE(grayscale().isEnabled());
}

TEST_F(GrayscaleServiceTest, LibraryWithoutTheEntryPointIsClosedAndNotUsed) {
    desktop.filter.hasEntryPoint = false;
    desktop.filter.isOn = true;
    desktop.filter.type = 1;
    EXPECT_FALSE(grayscale().isAvailable());
    EXPECT_FALSE(grayscale().isEnabled());
    EXPECT_EQ(calls("close"), Calls{"close 1"});
    grayscale().enable();
    grayscale().setGrayscale(true);
    grayscale().setGrayscale(false);
    desktop.runLoop.advance(1s);
    EXPECT_TRUE(switches().empty());
    EXPECT_TRUE(calls("setDisplayTransferByTable").empty());
}

TEST_F(GrayscaleServiceTest, MissingLibraryIsNotClosed) {
    desktop.filter.hasLibrary = false;
    EXPECT_FALSE(grayscale().isAvailable());
    EXPECT_TRUE(calls("symbol").empty());
    EXPECT_TRUE(calls("close").empty());
}

TEST_F(GrayscaleServiceTest, EnableSwitchesWithoutAFade) {
    grayscale().enable();
    EXPECT_EQ(switches(), on);
    EXPECT_TRUE(grayscale().isEnabled());
    EXPECT_TRUE(gamma().currentSaturation().empty());
}

TEST_F(GrayscaleServiceTest, FadeInWritesSixteenValuesAndTurnsTheFilterOn) {
    grayscale().setGrayscale(true);
    EXPECT_TRUE(grayscale().isEnabled());
    EXPECT_EQ(saturation(), 1.0F);
    for (int step = 1; step <= 15; ++step) {
        EXPECT_TRUE(switches().empty()) << "the filter should not change before the fade has ended";
        desktop.runLoop.advance(step < 15 ? 20ms : 19ms);
        if (step < 15) {
            EXPECT_EQ(saturation(), 1.0F + (0.0F - 1.0F) * (static_cast<float>(step) / 15.0F));
        }
    }
    const auto before = calls("setDisplayTransferByTable").size();
    EXPECT_EQ(before, 15U);
    desktop.runLoop.advance(1ms);
    EXPECT_EQ(calls("setDisplayTransferByTable").size(), 17U)
        << "the last step and full color should be written";
    EXPECT_EQ(switches(), on);
    EXPECT_EQ(saturation(), 1.0F) << "the filter should now remove the color instead";
    desktop.runLoop.advance(1s);
    EXPECT_EQ(calls("setDisplayTransferByTable").size(), 17U);
}

TEST_F(GrayscaleServiceTest, LastValueOfAFadeIsExact) {
    grayscale().setGrayscale(false);
    EXPECT_EQ(switches(), off);
    EXPECT_EQ(saturation(), 0.0F);
    desktop.runLoop.advance(300ms);
    EXPECT_EQ(saturation(), 1.0F);
    EXPECT_EQ(calls("setDisplayTransferByTable").size(), 16U);
    EXPECT_FALSE(grayscale().isEnabled());
}

TEST_F(GrayscaleServiceTest, SaturationFadesBetweenAnyTwoValuesAndThenCompletes) {
    int completions = 0;
    grayscale().animateSaturation(0.25F, 0.75F, [&] { ++completions; });
    EXPECT_EQ(saturation(), 0.25F) << "the first value should be set immediately";
    for (int step = 1; step <= 15; ++step) {
        EXPECT_EQ(completions, 0);
        desktop.runLoop.advance(20ms);
        EXPECT_EQ(saturation(), 0.25F + (0.75F - 0.25F) * (static_cast<float>(step) / 15.0F));
    }
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(calls("setDisplayTransferByTable").size(), 16U);
    EXPECT_TRUE(switches().empty()) << "a fade alone should not change the filter";
}

TEST_F(GrayscaleServiceTest, ReplacedFadeNeverCompletes) {
    grayscale().setGrayscale(true);
    desktop.runLoop.advance(200ms);
    grayscale().setGrayscale(false);
    desktop.runLoop.advance(1s);
    EXPECT_EQ(switches(), off);
    EXPECT_EQ(saturation(), 1.0F);
    EXPECT_FALSE(desktop.filter.isOn);
    EXPECT_FALSE(grayscale().isEnabled());
}

} // namespace
} // namespace nocta
