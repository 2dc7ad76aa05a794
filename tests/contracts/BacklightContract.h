#pragma once

#include "platform/Backlight.h"

#include <gtest/gtest.h>

namespace nocta {

/// The contract of every backlight. `Harness` has a `backlight()` and the display IDs `builtIn` and
/// `external`. After `fail()`, nothing can be read or written.
template <class Harness>
class BacklightContract : public ::testing::Test {
protected:
    Harness harness;
};

TYPED_TEST_SUITE_P(BacklightContract);

TYPED_TEST_P(BacklightContract, LevelReadsBackAsWritten) {
    for (const auto level : {1.0F, 0.55F, 0.1F}) {
        EXPECT_EQ(this->harness.backlight().setBrightness(this->harness.builtIn, level),
                  statusSuccess);
        float read = -1;
        EXPECT_EQ(this->harness.backlight().getBrightness(this->harness.builtIn, read),
                  statusSuccess);
        EXPECT_NEAR(read, level, 0.005);
    }
}

TYPED_TEST_P(BacklightContract, OtherDisplaysReturnAnError) {
    float level = 0.25F;
    for (const auto display : {this->harness.external, DisplayId{0xDEAD}}) {
        EXPECT_NE(this->harness.backlight().getBrightness(display, level), statusSuccess);
        EXPECT_NE(this->harness.backlight().setBrightness(display, 0.5F), statusSuccess);
    }
    EXPECT_EQ(level, 0.25F) << "a failed read should not change the level";
}

TYPED_TEST_P(BacklightContract, FailingDeviceReturnsAnError) {
    this->harness.fail();
    float level = 0.25F;
    EXPECT_NE(this->harness.backlight().getBrightness(this->harness.builtIn, level), statusSuccess);
    EXPECT_EQ(level, 0.25F);
    EXPECT_NE(this->harness.backlight().setBrightness(this->harness.builtIn, 0.5F), statusSuccess);
}

REGISTER_TYPED_TEST_SUITE_P(BacklightContract, LevelReadsBackAsWritten, OtherDisplaysReturnAnError,
                            FailingDeviceReturnsAnError);

} // namespace nocta
