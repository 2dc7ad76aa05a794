#include "display/BrightnessController.h"

#include "support/TestDesktop.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

namespace nocta {
namespace {

class Listener final : public BrightnessKeyboardDelegate {
public:
    std::vector<std::pair<bool, float>> presses;
    void brightnessKeyPressed(bool raises, float level) override {
        presses.emplace_back(raises, level);
    }
};

using Presses = std::vector<std::pair<bool, float>>;

class BrightnessControllerTest : public TestDesktop {
protected:
    std::shared_ptr<Listener> listener = std::make_shared<Listener>();

    void start() {
        displayService().refreshDisplays();
        brightness().probe();
        brightness().startKeyboardMonitoring();
        brightness().delegate = listener;
    }
};

TEST_F(BrightnessControllerTest, ConstructionFindsNoBacklightBeforeTheDisplayListIsRead) {
    plugBuiltIn();
    EXPECT_FALSE(brightness().isAvailable());
    displayService().refreshDisplays();
    EXPECT_FALSE(brightness().isAvailable());
    brightness().probe();
    EXPECT_TRUE(brightness().isAvailable());
}

TEST_F(BrightnessControllerTest, ConstructionAfterTheListIsReadFindsTheBacklight) {
    plugBuiltIn();
    displayService().refreshDisplays();
    EXPECT_TRUE(brightness().isAvailable());
}

TEST_F(BrightnessControllerTest, OnlyTheMainDisplayIsProbed) {
    desktop.displays.plug({.id = external, .isMain = true});
    desktop.displays.plug({.id = builtIn, .isBuiltIn = true});
    start();
    EXPECT_FALSE(brightness().isAvailable())
        << "a built-in display that is not the main one should not count";
    for (const auto& call : calls("getBrightness")) {
        EXPECT_EQ(call, "getBrightness 2");
    }
}

TEST_F(BrightnessControllerTest, LevelIsReadIfItIsAvailable) {
    EXPECT_EQ(brightness().readBrightness(), std::nullopt)
        << "there should be no level without a main display";
    plugBuiltIn();
    desktop.displays.display(builtIn).backlight = 0.625F;
    displayService().refreshDisplays();
    EXPECT_EQ(brightness().readBrightness(), std::nullopt)
        << "there should be no level before the probe";
    brightness().probe();
    EXPECT_EQ(brightness().readBrightness(), 0.625F);
    desktop.displays.backlightReadFails = true;
    EXPECT_EQ(brightness().readBrightness(), std::nullopt)
        << "there should be no level if the call fails";
}

/// A backlight that reports success but returns no level.
class SilentBacklight final : public Backlight {
public:
    Status getBrightness(DisplayId /*display*/, float& /*level*/) override { return statusSuccess; }
    Status setBrightness(DisplayId /*display*/, float /*level*/) override { return statusSuccess; }
};

TEST_F(BrightnessControllerTest, LevelThatIsNotReturnedReadsAsZero) {
    plugBuiltIn();
    displayService().refreshDisplays();
    SilentBacklight backlight;
    BrightnessController controller(displayService(), backlight, desktop.keyboard);
    EXPECT_EQ(controller.readBrightness(), 0.0F);
}

TEST_F(BrightnessControllerTest, DelegateReceivesTheBrightnessKeysWithTheCurrentLevel) {
    plugBuiltIn();
    start();
    desktop.displays.display(builtIn).backlight = 0.5F;
    desktop.keyboard.pressBrightnessUp();
    desktop.displays.display(builtIn).backlight = 0.25F;
    desktop.keyboard.pressBrightnessDown();
    EXPECT_EQ(listener->presses, (Presses{{true, 0.5F}, {false, 0.25F}}));
}

TEST_F(BrightnessControllerTest, OtherSystemDefinedEventsAreIgnored) {
    plugBuiltIn();
    start();
    for (const auto& event : {
             SystemDefinedEvent{.subtype = 7, .data1 = 0x910A00},
             SystemDefinedEvent{.subtype = 8, .data1 = 0x910B00}, // up
             SystemDefinedEvent{.subtype = 8, .data1 = 0x910C00},
             SystemDefinedEvent{.subtype = 8, .data1 = 0x8F0A00},
             SystemDefinedEvent{.subtype = 8, .data1 = 0x920A00},
             SystemDefinedEvent{.subtype = 8, .data1 = 0x000A00}, // volume
             SystemDefinedEvent{.subtype = 8, .data1 = 0x1910A00},
             SystemDefinedEvent{.subtype = 8, .data1 = -1},
         }) {
        desktop.keyboard.sendSystemDefined(event);
    }
    EXPECT_TRUE(listener->presses.empty());
    desktop.keyboard.sendSystemDefined({.subtype = 8, .data1 = 0x910A01}); // the repeat flag is set
    EXPECT_EQ(listener->presses.size(), 1U);
}

TEST_F(BrightnessControllerTest, KeysAreIgnoredWithOnlyExternalDisplays) {
    plugExternal();
    start();
    EXPECT_FALSE(brightness().isAvailable());
    desktop.keyboard.pressBrightnessUp();
    EXPECT_TRUE(listener->presses.empty());
}

TEST_F(BrightnessControllerTest, KeysAreIgnoredWhileTheBacklightIsUnavailable) {
    plugBuiltIn();
    desktop.displays.backlightReadFails = true;
    start();
    desktop.displays.backlightReadFails = false; // readable now, but not probed again
    desktop.keyboard.pressBrightnessUp();
    EXPECT_TRUE(listener->presses.empty());
}

TEST_F(BrightnessControllerTest, DelegateIsNotKeptAlive) {
    plugBuiltIn();
    start();
    const std::weak_ptr<Listener> gone = listener;
    listener.reset();
    EXPECT_TRUE(gone.expired());
    desktop.keyboard.pressBrightnessUp();
}

TEST_F(BrightnessControllerTest, RefusedKeyMonitorDoesNotAffectTheRest) {
    plugBuiltIn();
    desktop.keyboard.monitorIsRefused = true;
    start();
    desktop.keyboard.pressBrightnessUp();
    EXPECT_TRUE(listener->presses.empty());
    EXPECT_TRUE(brightness().readBrightness().has_value());
}

} // namespace
} // namespace nocta
