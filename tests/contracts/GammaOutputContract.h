#pragma once

#include "platform/GammaOutput.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <vector>

namespace nocta {

/// The contract of the displays' tables on every desktop. `Harness` starts with one display and has
/// `displays()` and `gammaOutput()`. `plug()` adds a second display, and returns once the program
/// has been notified. `top(id)` is the output level (0.0–1.0) for the brightest red input, read
/// independently of the port under test; `factoryTop(id)` is that level before the test.
template <class Harness>
class GammaOutputContract : public ::testing::Test {
protected:
    static constexpr double oneStep = 1.01 / 65535;

    void SetUp() override {
        if constexpr (requires { Harness::canReadTables(); }) {
            if (!Harness::canReadTables()) {
                GTEST_SKIP() << "the tables of this desktop cannot be read here";
            }
        }
    }

    std::vector<DisplayId> list() {
        std::array<DisplayId, 4> ids{};
        std::uint32_t count = 0;
        harness.displays().getActiveDisplayList(ids, count);
        return {ids.begin(), ids.begin() + count};
    }

    Status setRamp(DisplayId id, float top) {
        std::array<float, 256> table{};
        for (std::size_t i = 0; i < table.size(); ++i) {
            table[i] = top * static_cast<float>(i) / 255.0F;
        }
        return harness.gammaOutput().setDisplayTransferByTable(id, table, table, table);
    }

    void expectTop(DisplayId id, double level) {
        EXPECT_NEAR(harness.top(id), level * harness.factoryTop(id), oneStep) << id;
    }

    Harness harness;
};

TYPED_TEST_SUITE_P(GammaOutputContract);

TYPED_TEST_P(GammaOutputContract, UnknownDisplayFails) {
    EXPECT_NE(this->setRamp(0xDEAD, 0.5F), statusSuccess);
}

TYPED_TEST_P(GammaOutputContract, TablesAreAppliedToTheFactoryTablesOfTheDisplay) {
    EXPECT_TRUE(this->harness.gammaOutput().isAvailable());
    const auto id = this->list().at(0);
    for (const auto level : {0.5F, 0.0F, 1.0F}) {
        EXPECT_EQ(this->setRamp(id, level), statusSuccess);
        this->expectTop(id, level);
    }
}

TYPED_TEST_P(GammaOutputContract, LastOfManyTablesIsShown) {
    const auto id = this->list().at(0);
    for (int step = 100; step >= 50; --step) {
        EXPECT_EQ(this->setRamp(id, static_cast<float>(step) / 100), statusSuccess);
    }
    this->expectTop(id, 0.5);
}

TYPED_TEST_P(GammaOutputContract, EveryDisplayHasItsOwnTables) {
    this->harness.plug();
    const auto ids = this->list();
    ASSERT_EQ(ids.size(), 2U);
    EXPECT_EQ(this->setRamp(ids[0], 0.5F), statusSuccess);
    EXPECT_EQ(this->setRamp(ids[1], 0.25F), statusSuccess);
    this->expectTop(ids[0], 0.5);
    this->expectTop(ids[1], 0.25);
}

TYPED_TEST_P(GammaOutputContract, RestoringSetsTheFactoryTablesAndAllowsLaterWrites) {
    this->harness.plug();
    const auto ids = this->list();
    ASSERT_EQ(ids.size(), 2U);
    for (const auto level : {0.5F, 0.25F}) {
        for (const auto id : ids) {
            this->setRamp(id, level);
            this->expectTop(id, level);
        }
        this->harness.gammaOutput().displayRestoreColorSyncSettings();
        for (const auto id : ids) {
            EXPECT_EQ(this->harness.top(id), this->harness.factoryTop(id)) << id;
        }
    }
}

TYPED_TEST_P(GammaOutputContract, RestoringWithoutAWriteLeavesTheFactoryTables) {
    const auto id = this->list().at(0);
    this->harness.gammaOutput().displayRestoreColorSyncSettings();
    EXPECT_EQ(this->harness.top(id), this->harness.factoryTop(id));
}

REGISTER_TYPED_TEST_SUITE_P(GammaOutputContract, UnknownDisplayFails,
                            TablesAreAppliedToTheFactoryTablesOfTheDisplay, LastOfManyTablesIsShown,
                            EveryDisplayHasItsOwnTables,
                            RestoringSetsTheFactoryTablesAndAllowsLaterWrites,
                            RestoringWithoutAWriteLeavesTheFactoryTables);

} // namespace nocta
