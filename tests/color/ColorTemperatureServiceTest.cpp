#include "color/ColorTemperatureService.h"

#include "base/Calendar.h"
#include "support/TestDesktop.h"
#include "support/TimeZone.h"

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

namespace nocta {
namespace {

using namespace std::chrono_literals;

class ColorTemperatureServiceTest : public TestDesktop {
protected:
    TimeZone zone{zone::utc};
    std::vector<std::int64_t> shown;
    Cancellables cancellables;

    void SetUp() override {
        plugExternal();
        settings().autoWarmthEnabled.set(false);
        gamma().start(desktop.notificationCenter);
        cancellables.push_back(colorTemperature().currentTemperature.subscribe(
            [this](std::int64_t kelvin) { shown.push_back(kelvin); }));
    }
    void setPosition(SunPosition position) { schedule().currentSunPosition.set(position); }
    std::int64_t engineTemperature() { return gamma().currentTemperature().at(external); }
};

TEST_F(ColorTemperatureServiceTest, ConstructionAppliesNothing) {
    EXPECT_EQ(colorTemperature().currentTemperature.get(), 6500);
    EXPECT_EQ(colorTemperature().currentWarmth.get(), 0.5);
    EXPECT_TRUE(calls("setDisplayTransferByTable").empty());
}

TEST_F(ColorTemperatureServiceTest, ManualWarmthIsImmediateAndClamped) {
    struct Row {
        double given;
        double warmth;
        std::int64_t kelvin;
    };
    for (const auto& [given, warmth, kelvin] :
         {Row{0, 0, 6500}, Row{0.5, 0.5, 4600}, Row{1, 1, 2700}, Row{1.7, 1, 2700},
          Row{-0.2, 0, 6500}, Row{0.3, 0.3, 5360}, Row{0.0001, 0.0001, 6500}}) {
        settings().warmthLevel.set(given);
        EXPECT_EQ(colorTemperature().currentWarmth.get(), warmth);
        EXPECT_EQ(colorTemperature().currentTemperature.get(), kelvin) << given;
        EXPECT_EQ(engineTemperature(), kelvin);
    }
}

TEST_F(ColorTemperatureServiceTest, AutomaticTemperatureFollowsThePositionOfTheSun) {
    struct Row {
        std::int64_t day;
        std::int64_t night;
        SunPosition position;
        std::int64_t kelvin;
    };
    for (const auto& [day, night, position, kelvin] : {
             Row{6500, 2700, Day{}, 6500},
             Row{6500, 2700, Night{}, 2700},
             Row{6500, 2700, Sunrise{0.5}, 4600},
             Row{6500, 2700, Sunset{0.25}, 5550},
             Row{6500, 2700, Sunrise{0}, 2700},
             Row{6500, 2700, Sunset{1}, 2700},
             Row{6501, 2700, Sunrise{0.5}, 4600}, // 1900.5 is truncated to 1900
             Row{6501, 2700, Sunset{0.5}, 4601},  // likewise
             Row{2700, 6501, Sunrise{0.5}, 4601}, // -1900.5 is truncated to -1900
             Row{2700, 6501, Sunset{0.5}, 4600},
         }) {
        settings().colorTemperatureDay.set(day);
        settings().colorTemperatureNight.set(night);
        setPosition(position);
        EXPECT_EQ(colorTemperature().automaticTemperature(), kelvin);
    }
    EXPECT_TRUE(shown.empty())
        << "neither reading nor the two settings should change the screen in manual mode";
}

TEST_F(ColorTemperatureServiceTest, SwitchingOnFadesAndThenEntersAutomaticMode) {
    setPosition(Night{});
    settings().autoWarmthEnabled.set(true);
    EXPECT_TRUE(shown.empty());
    desktop.runLoop.advance(300ms);
    std::vector<std::int64_t> expected;
    for (int step = 1; step <= 15; ++step) {
        expected.push_back(6500 + static_cast<std::int64_t>(step / 15.0 * -3800));
    }
    expected.push_back(2700); // automatic mode applies it again
    EXPECT_EQ(shown, expected);
    shown.clear();
    desktop.runLoop.advance(59s);
    EXPECT_TRUE(shown.empty());
    setPosition(Day{});
    desktop.runLoop.advance(1s);
    EXPECT_EQ(shown, std::vector<std::int64_t>{6500});
    desktop.runLoop.advance(60s);
    EXPECT_EQ(shown, (std::vector<std::int64_t>{6500, 6500}))
        << "an equal value should be sent every minute too";
}

TEST_F(ColorTemperatureServiceTest, SwitchingOffFadesToTheWarmthAndEndsTheUpdates) {
    setPosition(Night{});
    settings().autoWarmthEnabled.set(true);
    desktop.runLoop.advance(1s);
    settings().autoWarmthEnabled.set(false);
    desktop.runLoop.advance(300ms);
    EXPECT_EQ(engineTemperature(), 4600);
    shown.clear();
    desktop.runLoop.advance(1h);
    EXPECT_TRUE(shown.empty());
}

TEST_F(ColorTemperatureServiceTest, SwitchingOnAndImmediatelyOffIsOneContinuousTransition) {
    setPosition(Night{});
    settings().autoWarmthEnabled.set(true);
    desktop.runLoop.advance(140ms); // seven steps
    const auto reached = colorTemperature().currentTemperature.get();
    EXPECT_EQ(reached, 6500 - 1773);
    settings().autoWarmthEnabled.set(false);
    desktop.runLoop.advance(1min);
    EXPECT_EQ(shown.back(), 4600);
    EXPECT_EQ(shown.size(), 7U + 15U)
        << "neither the first completion nor a minute tick should have an effect";
    for (std::size_t i = 1; i < shown.size(); ++i) {
        EXPECT_LE(std::abs(shown[i] - shown[i - 1]), 254)
            << "no step should exceed those of the longer transition";
    }
}

TEST_F(ColorTemperatureServiceTest, TransitionDoesNotChangeTheWarmth) {
    settings().warmthLevel.set(0.25);
    int published = 0;
    const auto subscription =
        colorTemperature().currentWarmth.subscribe([&](double /*warmth*/) { ++published; });
    setPosition(Night{});
    settings().autoWarmthEnabled.set(true);
    desktop.runLoop.advance(1s);
    settings().autoWarmthEnabled.set(false);
    desktop.runLoop.advance(1s);
    colorTemperature().animateTo(3000);
    desktop.runLoop.advance(1s);
    EXPECT_EQ(colorTemperature().currentWarmth.get(), 0.25);
    EXPECT_EQ(published, 0);
}

TEST_F(ColorTemperatureServiceTest, WarmthDoesNotStopATransition) {
    setPosition(Night{});
    settings().autoWarmthEnabled.set(true);
    desktop.runLoop.advance(1s);
    settings().autoWarmthEnabled.set(false); // a transition from 2700 to 4600
    desktop.runLoop.advance(20ms);
    settings().warmthLevel.set(0);
    EXPECT_EQ(engineTemperature(), 6500);
    desktop.runLoop.advance(280ms);
    EXPECT_EQ(engineTemperature(), 4600);
}

TEST_F(ColorTemperatureServiceTest, WarmthHasNoEffectInAutomaticMode) {
    setPosition(Day{});
    settings().autoWarmthEnabled.set(true);
    desktop.runLoop.advance(1s);
    shown.clear();
    settings().warmthLevel.set(1);
    EXPECT_TRUE(shown.empty());
}

TEST_F(ColorTemperatureServiceTest, FirstChangeOfEitherTemperatureIsImmediateInAutomaticMode) {
    setPosition(Night{});
    settings().autoWarmthEnabled.set(true);
    desktop.runLoop.advance(1s);
    shown.clear();
    settings().colorTemperatureNight.set(3000);
    EXPECT_EQ(shown, std::vector<std::int64_t>{3000});
    settings().colorTemperatureDay.set(6000);
    EXPECT_EQ(shown, (std::vector<std::int64_t>{3000, 3000}));
}

TEST_F(ColorTemperatureServiceTest, OverflowingTemperaturesStopTheProgram) {
    settings().colorTemperatureDay.set(std::numeric_limits<std::int64_t>::max());
    settings().colorTemperatureNight.set(std::numeric_limits<std::int64_t>::min());
    setPosition(Sunrise{0.5});
    EXPECT_DEATH(colorTemperature().automaticTemperature(),
                 "^nocta: stopped: .*colorTemperatureDay is 9223372036854775807, "
                 "colorTemperatureNight is -9223372036854775808: a difference is too large");
    settings().warmthLevel.set(1e300);
    EXPECT_DEATH(settings().autoWarmthEnabled.set(false), "warmthLevel is 1e\\+300, .*too large");
}

} // namespace
} // namespace nocta
