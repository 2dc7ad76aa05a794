#pragma once

#include "contracts/OverlayWindowsContract.h"

namespace nocta {

/// The contract of the overlay windows on desktops that report key presses in other programs.
/// `Harness` has the members that `OverlayWindowsContract` requires.
template <class Harness>
class EarlierTypingContract : public OverlayWindowsContract<Harness> {};

TYPED_TEST_SUITE_P(EarlierTypingContract);

TYPED_TEST_P(EarlierTypingContract, EarlierTypingIsDiscardedUntilAPause) {
    const auto window = this->make();
    EXPECT_FALSE(this->harness.press()) << "the key should go to a window of another program";
    this->harness.letPass(this->pause / 10);
    const auto monitor = this->monitorKeys();
    window->makeKeyAndOrderFront();
    EXPECT_FALSE(this->harness.press());
    this->harness.letPass(this->pause);
    EXPECT_TRUE(this->harness.press());
    EXPECT_EQ(this->handled, 1) << "only the key after the pause should be handled";
}

REGISTER_TYPED_TEST_SUITE_P(EarlierTypingContract, EarlierTypingIsDiscardedUntilAPause);

} // namespace nocta
