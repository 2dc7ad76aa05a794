#pragma once

#include "base/NotificationCenter.h"
#include "contracts/GammaOutputContract.h"

namespace nocta {

/// The contract of displays that can be removed, and of their tables. `Harness` has the members
/// that `GammaOutputContract` requires, and `notificationCenter()`. `unplug()` removes the display
/// that `plug()` added, and returns once the program has been notified.
template <class Harness>
class DisplayRemovalContract : public GammaOutputContract<Harness> {};

TYPED_TEST_SUITE_P(DisplayRemovalContract);

TYPED_TEST_P(DisplayRemovalContract, RemovalIsReportedWithTheNewList) {
    const auto before = this->list();
    this->harness.plug();
    std::vector<std::size_t> sizes;
    const auto subscription = this->harness.notificationCenter().observe(
        didChangeScreenParametersNotification, [&] { sizes.push_back(this->list().size()); });
    this->harness.unplug();
    ASSERT_FALSE(sizes.empty());
    EXPECT_EQ(sizes.back(), 1U);
    EXPECT_EQ(this->list(), before);
}

TYPED_TEST_P(DisplayRemovalContract, RemovedDisplayFailsWithoutAffectingOthers) {
    this->harness.plug();
    const auto ids = this->list();
    ASSERT_EQ(ids.size(), 2U);
    this->setRamp(ids[1], 0.25F);
    this->harness.unplug();
    EXPECT_NE(this->setRamp(ids[1], 0.5F), statusSuccess);
    EXPECT_EQ(this->setRamp(ids[0], 0.5F), statusSuccess);
    this->expectTop(ids[0], 0.5);
}

TYPED_TEST_P(DisplayRemovalContract, ReconnectedDisplayAcceptsTables) {
    this->harness.plug();
    const auto before = this->list();
    this->setRamp(before.at(1), 0.25F);
    this->harness.unplug();
    this->harness.plug();
    ASSERT_EQ(this->list(), before) << "a display should keep its ID";
    EXPECT_EQ(this->setRamp(before.at(1), 0.5F), statusSuccess);
    this->expectTop(before.at(1), 0.5);
}

REGISTER_TYPED_TEST_SUITE_P(DisplayRemovalContract, RemovalIsReportedWithTheNewList,
                            RemovedDisplayFailsWithoutAffectingOthers,
                            ReconnectedDisplayAcceptsTables);

} // namespace nocta
