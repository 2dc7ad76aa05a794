#pragma once

#include "platform/Workspace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace nocta {

/// The widths and heights of windows.
using WindowSizes = std::vector<std::pair<double, double>>;

/// The contract of the workspace on every desktop. `Harness` has a `workspace()` with one display
/// and no windows on screen, and two applications, `editor` and `player`. `displayFrame()` returns
/// the frame of the display. `windowSizes` contains, in ascending order, window sizes that the
/// desktop can show and report simultaneously. `bringToFront(application)` brings an application to
/// the front; with `std::nullopt`, no application is in front. `setWindows(sizes)` opens and closes
/// windows until windows of exactly these sizes are on screen. Both return once the program has
/// been notified. `setReducesMotion(isOn)` changes the user's setting.
template <class Harness>
class WorkspaceContract : public ::testing::Test {
protected:
    using Application = std::optional<RunningApplication>;

    /// Records each report, and checks that it matches the application in front at that time.
    [[nodiscard]] Subscription observe(std::vector<Application>& reports) {
        return harness.workspace().observeDidActivateApplication(
            [this, &reports](const Application& application) {
                reports.push_back(application);
                EXPECT_EQ(harness.workspace().frontmostApplication(), application);
            });
    }
    /// Returns the sizes in ascending order.
    WindowSizes sizesOnScreen() {
        WindowSizes sizes;
        const auto windows = harness.workspace().copyWindowInfo().value();
        for (const auto& window : windows) {
            sizes.emplace_back(window.width.value(), window.height.value());
        }
        std::ranges::sort(sizes);
        return sizes;
    }

    Harness harness;
};

TYPED_TEST_SUITE_P(WorkspaceContract);

TYPED_TEST_P(WorkspaceContract, EachApplicationThatComesToTheFrontIsReported) {
    std::vector<std::optional<RunningApplication>> reports;
    const auto observer = this->observe(reports);
    EXPECT_EQ(this->harness.workspace().frontmostApplication(), std::nullopt);
    this->harness.bringToFront(this->harness.editor);
    this->harness.bringToFront(this->harness.player);
    this->harness.bringToFront(std::nullopt);
    this->harness.bringToFront(this->harness.player);
    EXPECT_EQ(reports,
              (std::vector<std::optional<RunningApplication>>{
                  this->harness.editor, this->harness.player, std::nullopt, this->harness.player}));
}

TYPED_TEST_P(WorkspaceContract, ApplicationAlreadyInFrontIsNotReportedAgain) {
    std::vector<std::optional<RunningApplication>> reports;
    const auto observer = this->observe(reports);
    this->harness.bringToFront(this->harness.editor);
    this->harness.bringToFront(this->harness.editor);
    EXPECT_EQ(reports.size(), 1U);
}

TYPED_TEST_P(WorkspaceContract, NothingIsReportedAfterTheSubscriptionHasEnded) {
    std::vector<std::optional<RunningApplication>> ended;
    std::vector<std::optional<RunningApplication>> lasting;
    auto observer = this->observe(ended);
    const auto other = this->observe(lasting);
    observer.cancel();
    this->harness.bringToFront(this->harness.editor);
    EXPECT_EQ(ended.size(), 0U);
    EXPECT_EQ(lasting.size(), 1U);
}

TYPED_TEST_P(WorkspaceContract, WindowsOnScreenAreListedWithTheirSizes) {
    EXPECT_EQ(this->sizesOnScreen(), WindowSizes{});
    WindowSizes sizes(this->harness.windowSizes);
    while (!sizes.empty()) {
        this->harness.setWindows(sizes);
        EXPECT_EQ(this->sizesOnScreen(), sizes);
        sizes.erase(sizes.begin());
    }
    this->harness.setWindows({});
    EXPECT_EQ(this->sizesOnScreen(), WindowSizes{});
}

TYPED_TEST_P(WorkspaceContract, SingleDisplayIsTheMainScreen) {
    EXPECT_EQ(this->harness.workspace().mainScreenFrame(), this->harness.displayFrame());
}

TYPED_TEST_P(WorkspaceContract, ReducedMotionFollowsTheUsersSetting) {
    for (const auto isOn : {false, true, false}) {
        this->harness.setReducesMotion(isOn);
        EXPECT_EQ(this->harness.workspace().accessibilityDisplayShouldReduceMotion(), isOn);
    }
}

REGISTER_TYPED_TEST_SUITE_P(WorkspaceContract, EachApplicationThatComesToTheFrontIsReported,
                            ApplicationAlreadyInFrontIsNotReportedAgain,
                            NothingIsReportedAfterTheSubscriptionHasEnded,
                            WindowsOnScreenAreListedWithTheirSizes, SingleDisplayIsTheMainScreen,
                            ReducedMotionFollowsTheUsersSetting);

} // namespace nocta
