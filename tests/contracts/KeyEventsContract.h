#pragma once

#include "platform/KeyEvents.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace nocta {

/// The contract of the brightness keys on every desktop. `Harness` has `keyEvents()`,
/// `pressBrightnessUp()` and `pressBrightnessDown()`; the last two return once the program has
/// received the event.
template <class Harness>
class KeyEventsContract : public ::testing::Test {
protected:
    Harness harness;
};

TYPED_TEST_SUITE_P(KeyEventsContract);

TYPED_TEST_P(KeyEventsContract, TapReceivesTheBrightnessKeys) {
    std::vector<std::int64_t> keys;
    const auto tap = this->harness.keyEvents().createKeyDownTap(
        [&](const KeyDownEvent& event) { keys.push_back(event.keyCode); });
    ASSERT_TRUE(tap);
    this->harness.pressBrightnessUp();
    this->harness.pressBrightnessDown();
    this->harness.pressBrightnessDown();
    EXPECT_EQ(keys, (std::vector<std::int64_t>{145, 144, 144}));
}

TYPED_TEST_P(KeyEventsContract, MonitorReceivesBrightnessKeysAsAuxiliaryControlButtons) {
    std::vector<std::int64_t> data;
    const auto monitor = this->harness.keyEvents().addGlobalMonitorForSystemDefinedEvents(
        [&](const SystemDefinedEvent& event) {
            EXPECT_EQ(event.subtype, 8);
            data.push_back(event.data1);
        });
    ASSERT_TRUE(monitor);
    this->harness.pressBrightnessUp();
    this->harness.pressBrightnessDown();
    EXPECT_EQ(data, (std::vector<std::int64_t>{0x910A00, 0x900A00}));
}

TYPED_TEST_P(KeyEventsContract, NothingIsReceivedAfterTheSubscriptionHasEnded) {
    int ended = 0;
    int lasting = 0;
    auto tap = this->harness.keyEvents().createKeyDownTap([&](const KeyDownEvent&) { ++ended; });
    const auto other =
        this->harness.keyEvents().createKeyDownTap([&](const KeyDownEvent&) { ++lasting; });
    tap.cancel();
    this->harness.pressBrightnessUp();
    EXPECT_EQ(ended, 0);
    EXPECT_EQ(lasting, 1);
}

REGISTER_TYPED_TEST_SUITE_P(KeyEventsContract, TapReceivesTheBrightnessKeys,
                            MonitorReceivesBrightnessKeysAsAuxiliaryControlButtons,
                            NothingIsReceivedAfterTheSubscriptionHasEnded);

} // namespace nocta
