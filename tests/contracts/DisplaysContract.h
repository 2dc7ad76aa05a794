#pragma once

#include "base/NotificationCenter.h"
#include "platform/Displays.h"
#include "platform/GammaOutput.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace nocta {

/// The contract of the displays and their tables on every desktop. `Harness` starts with one
/// display and has `displays()`, `gammaOutput()` and `notificationCenter()`. `plug()` and
/// `unplug()` add and remove a second display, and return once the program has been notified.
/// `top(id)` is the output level (0.0–1.0) for the brightest red input, read independently of the
/// port under test; `factoryTop(id)` is that level before the test.
template <class Harness>
class DisplaysContract : public ::testing::Test {
protected:
    static constexpr double oneStep = 1.01 / 65535;

    std::vector<DisplayId> list() {
        std::uint32_t count = 0;
        EXPECT_EQ(harness.displays().getActiveDisplayList({}, count), statusSuccess);
        std::vector<DisplayId> ids(count);
        EXPECT_EQ(harness.displays().getActiveDisplayList(ids, count), statusSuccess);
        EXPECT_EQ(count, ids.size());
        return ids;
    }

    Status setRamp(DisplayId id, float top) {
        std::array<float, 256> table{};
        for (std::size_t i = 0; i < table.size(); ++i) {
            table[i] = top * static_cast<float>(i) / 255.0F;
        }
        return harness.gammaOutput().setDisplayTransferByTable(id, table, table, table);
    }

    Harness harness;
};

TYPED_TEST_SUITE_P(DisplaysContract);

TYPED_TEST_P(DisplaysContract, ListIsCountedAndThenFilled) {
    EXPECT_EQ(this->list().size(), 1U);
    std::array<DisplayId, 4> room{};
    std::uint32_t count = 0;
    this->harness.displays().getActiveDisplayList(room, count);
    EXPECT_EQ(count, 1U) << "only the displays should be counted, not the free space";
}

TYPED_TEST_P(DisplaysContract, DisplayHasItsModeAndBounds) {
    const auto id = this->list().at(0);
    const auto mode = this->harness.displays().displayCopyDisplayMode(id);
    ASSERT_TRUE(mode.has_value());
    const auto bounds = this->harness.displays().displayBounds(id);
    EXPECT_EQ(bounds.width, mode->width);
    EXPECT_EQ(bounds.height, mode->height);
}

TYPED_TEST_P(DisplaysContract, UnknownDisplayHasNoDataAndFails) {
    constexpr DisplayId unknown = 0xDEAD;
    EXPECT_EQ(this->harness.displays().displayBounds(unknown), Rect{});
    EXPECT_FALSE(this->harness.displays().displayIsMain(unknown));
    EXPECT_FALSE(this->harness.displays().displayIsBuiltin(unknown));
    EXPECT_EQ(this->harness.displays().displayCopyDisplayMode(unknown), std::nullopt);
    EXPECT_NE(this->setRamp(unknown, 0.5F), statusSuccess);
}

TYPED_TEST_P(DisplaysContract, PluggingAndUnpluggingIsReportedWithTheNewList) {
    std::vector<std::size_t> sizes;
    const auto subscription = this->harness.notificationCenter().observe(
        didChangeScreenParametersNotification, [&] { sizes.push_back(this->list().size()); });
    const auto before = this->list();
    this->harness.plug();
    ASSERT_FALSE(sizes.empty());
    EXPECT_EQ(sizes.back(), 2U);
    this->harness.unplug();
    EXPECT_EQ(sizes.back(), 1U);
    EXPECT_EQ(this->list(), before);
}

TYPED_TEST_P(DisplaysContract, TablesApplyToTheFactoryTablesOfTheDisplay) {
    const auto id = this->list().at(0);
    const auto factory = this->harness.factoryTop(id);
    for (const auto level : {0.5F, 0.0F, 1.0F}) {
        EXPECT_EQ(this->setRamp(id, level), statusSuccess);
        EXPECT_NEAR(this->harness.top(id), level * factory, this->oneStep);
    }
}

TYPED_TEST_P(DisplaysContract, EveryDisplayHasItsOwnTables) {
    this->harness.plug();
    const auto ids = this->list();
    ASSERT_EQ(ids.size(), 2U);
    EXPECT_EQ(this->setRamp(ids[0], 0.5F), statusSuccess);
    EXPECT_EQ(this->setRamp(ids[1], 0.25F), statusSuccess);
    EXPECT_NEAR(this->harness.top(ids[0]), 0.5 * this->harness.factoryTop(ids[0]), this->oneStep);
    EXPECT_NEAR(this->harness.top(ids[1]), 0.25 * this->harness.factoryTop(ids[1]), this->oneStep);
}

TYPED_TEST_P(DisplaysContract, UnpluggedDisplayFailsWithoutAffectingOthers) {
    this->harness.plug();
    const auto ids = this->list();
    ASSERT_EQ(ids.size(), 2U);
    this->harness.unplug();
    EXPECT_NE(this->setRamp(ids[1], 0.5F), statusSuccess);
    EXPECT_EQ(this->setRamp(ids[0], 0.5F), statusSuccess);
    EXPECT_NEAR(this->harness.top(ids[0]), 0.5 * this->harness.factoryTop(ids[0]), this->oneStep);
}

TYPED_TEST_P(DisplaysContract, RestoringSetsTheFactoryTablesAndAllowsLaterWrites) {
    const auto id = this->list().at(0);
    const auto factory = this->harness.factoryTop(id);
    this->setRamp(id, 0.5F);
    this->harness.gammaOutput().displayRestoreColorSyncSettings();
    EXPECT_EQ(this->harness.top(id), factory);
    this->setRamp(id, 0.25F);
    EXPECT_NEAR(this->harness.top(id), 0.25 * factory, this->oneStep);
    this->harness.gammaOutput().displayRestoreColorSyncSettings();
    EXPECT_EQ(this->harness.top(id), factory);
}

REGISTER_TYPED_TEST_SUITE_P(DisplaysContract, ListIsCountedAndThenFilled,
                            DisplayHasItsModeAndBounds, UnknownDisplayHasNoDataAndFails,
                            PluggingAndUnpluggingIsReportedWithTheNewList,
                            TablesApplyToTheFactoryTablesOfTheDisplay, EveryDisplayHasItsOwnTables,
                            UnpluggedDisplayFailsWithoutAffectingOthers,
                            RestoringSetsTheFactoryTablesAndAllowsLaterWrites);

} // namespace nocta
