#include "support/DesktopOnX11.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <vector>

// Tests gradual screen changes, as seen by another client of the X server.

namespace nocta {
namespace {

using namespace std::chrono_literals;

constexpr int steps = 15;
constexpr Duration step = 20ms;

class GlidesOnX11Test : public DesktopOnX11 {
protected:
    /// The identity matrix in the format of the output property.
    const std::vector<std::uint32_t> colored = {0, 1, 0, 0, 0, 0, 0, 0, 0,
                                                1, 0, 0, 0, 0, 0, 0, 0, 1};

    void SetUp() override {
        x.client.setOutputProperty("CTM", colored);
        settings().unifiedBrightness.set(1);
        settings().autoWarmthEnabled.set(false);
    }
    static double kelvinOf(double blue) {
        return 100 * (std::exp((255 * blue + 305.0447927307) / 138.5177312231) + 10);
    }
    double shownKelvin() { return kelvinOf(shownWhite()[2]); }
};

TEST_F(GlidesOnX11Test, SwitchingAutomaticWarmthOnAndOffChangesTheScreenWithoutJumps) {
    desktop.runLoop.setWallClock(desktop.runLoop.wallNow() + 12h); // at night
    settings().warmthLevel.set(0);
    launch();
    std::vector<double> shown = {shownKelvin()};
    const auto record = [&](int number) {
        for (int i = 0; i < number; ++i) {
            desktop.runLoop.advance(step);
            shown.push_back(shownKelvin());
        }
    };
    settings().autoWarmthEnabled.set(true);
    shown.push_back(shownKelvin());
    record(7);
    settings().autoWarmthEnabled.set(false);
    shown.push_back(shownKelvin());
    record(steps);

    const auto warmest = *std::ranges::min_element(shown);
    EXPECT_NEAR(shown.front(), 6500, 1);
    EXPECT_NEAR(warmest, 6500 - 3800.0 * 7 / steps, 2);
    EXPECT_NEAR(shown.back(), 6500, 1);
    for (std::size_t i = 1; i < shown.size(); ++i) {
        EXPECT_LE(std::abs(shown[i] - shown[i - 1]), 3800.0 / steps + 2) << i;
    }
    const auto turn = std::ranges::find(shown, warmest);
    EXPECT_TRUE(std::is_sorted(shown.begin(), turn, std::greater{}));
    EXPECT_TRUE(std::is_sorted(turn, shown.end()));
    quit();
}

TEST_F(GlidesOnX11Test, EyeReliefFadesTheTintOutBeforeGrayAndInAfterGray) {
    // The luminance weights of red, green and blue, times 2^32.
    std::vector<std::uint32_t> gray;
    for (int row = 0; row < 3; ++row) {
        gray.insert(gray.end(), {913110047, 0, 3071760610, 0, 310096639, 0});
    }
    const auto output = x.client.activeOutputs().at(0);
    const auto matrix = [&] { return x.client.outputProperty("CTM", output); };
    // The tint of white: the difference between its largest and smallest channels.
    const auto tint = [&] {
        const auto white = shownWhite();
        return std::ranges::max(white) - std::ranges::min(white);
    };

    settings().warmthLevel.set(1);
    launch();
    const auto whole = tint();
    ASSERT_GT(whole, 0.5);

    settings().grayscaleEnabled.set(true);
    EXPECT_NEAR(tint(), whole, 1e-4);
    for (int i = 1; i < steps; ++i) {
        desktop.runLoop.advance(step);
        EXPECT_NEAR(tint(), whole * (steps - i) / steps, 1e-4) << i;
        EXPECT_EQ(matrix(), colored) << i;
    }
    desktop.runLoop.advance(step);
    EXPECT_NEAR(tint(), whole, 1e-4)
        << "the tint should return, because the matrix now removes the color";
    EXPECT_EQ(matrix(), gray);

    settings().grayscaleEnabled.set(false);
    EXPECT_EQ(matrix(), colored);
    for (int i = 0; i <= steps; ++i) {
        EXPECT_NEAR(tint(), whole * i / steps, 1e-4) << i;
        desktop.runLoop.advance(step);
    }
    quit();
}

} // namespace
} // namespace nocta
