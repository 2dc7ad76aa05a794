#include "ui/Descriptions.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <utility>

namespace nocta {

// Lets GoogleTest print the texts of a failed comparison.
void PrintTo(const QString& text, std::ostream* stream) {
    *stream << text.toStdString();
}

namespace {

TEST(Descriptions, PercentagesAreTruncated) {
    for (const auto& [fraction, text] : {std::pair(0.755, "75%"),
                                         {0.29, "28%"},
                                         {0.57, "56%"},
                                         {0.58, "57%"},
                                         {0.0, "0%"},
                                         {1.0, "100%"}}) {
        EXPECT_EQ(percentage(fraction), text);
    }
}

TEST(Descriptions, StatusLineDescribesEveryState) {
    const auto counting = [](double seconds) { return breakStatusLine(Counting{seconds}); };
    EXPECT_EQ(counting(0), "0s left");
    EXPECT_EQ(counting(59.9), "59s left");
    EXPECT_EQ(counting(60), "1m left");
    EXPECT_EQ(counting(119), "1m left");
    EXPECT_EQ(counting(120), "2m left");
    EXPECT_EQ(counting(7200), "120m left");
    EXPECT_EQ(breakStatusLine(Active{19.9}), "Break: 19s");
    EXPECT_EQ(breakStatusLine(Paused{PauseReason::meeting}), "In meeting");
    EXPECT_EQ(breakStatusLine(Paused{PauseReason::userPaused}), "Paused");
    EXPECT_EQ(breakStatusLine(Snoozed{}), "Snoozed");
    EXPECT_EQ(breakStatusLine(Idle{}), "Off");
}

TEST(Descriptions, TemperatureDescriptionsChangeAtTheThresholds) {
    for (const auto& [kelvin, text] : {std::pair(1000, "Candlelight"),
                                       {2999, "Candlelight"},
                                       {3000, "Very warm"},
                                       {3799, "Very warm"},
                                       {3800, "Warm"},
                                       {4799, "Warm"},
                                       {4800, "Slightly warm"},
                                       {5799, "Slightly warm"},
                                       {5800, "Neutral"},
                                       {10000, "Neutral"}}) {
        EXPECT_EQ(temperatureDescription(kelvin), text) << kelvin;
    }
}

TEST(Descriptions, WarmthIsOneOfThreeWords) {
    for (const auto& [warmth, text] : {std::pair(0.0, "Cool"),
                                       {0.3299, "Cool"},
                                       {0.33, "Neutral"},
                                       {0.6599, "Neutral"},
                                       {0.66, "Warm"},
                                       {1.0, "Warm"}}) {
        EXPECT_EQ(warmthWord(warmth), text) << warmth;
    }
}

TEST(Descriptions, CompletionRateCountsAllBreaksAndIsTruncated) {
    const auto rate = [](std::int64_t completed, std::int64_t total) {
        return completionRate({.totalBreaks = total, .completedBreaks = completed});
    };
    EXPECT_EQ(rate(0, 0), "0%");
    EXPECT_EQ(rate(0, 3), "0%");
    EXPECT_EQ(rate(2, 3), "66%");
    EXPECT_EQ(rate(3, 3), "100%");
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(rate(most, most), "100%");
}

TEST(Descriptions, ProfileSummaryStatesTheBreakInterval) {
    Profile profile;
    profile.breakInterval = 25;
    EXPECT_EQ(breakSummary(profile), "Off");
    profile.breakTimerEnabled = true;
    EXPECT_EQ(breakSummary(profile), "Every 25 min");
}

TEST(Descriptions, OnlyAuthorizedStatusesCountAsGranted) {
    EXPECT_TRUE(isGranted(AuthorizationStatus::authorized));
    EXPECT_TRUE(isGranted(AuthorizationStatus::authorizedWhenInUse));
    for (const auto status : {AuthorizationStatus::notDetermined, AuthorizationStatus::restricted,
                              AuthorizationStatus::denied}) {
        EXPECT_FALSE(isGranted(status));
    }
}

} // namespace
} // namespace nocta
