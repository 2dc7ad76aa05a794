#include "backends/macos/DisplayServicesBacklight.h"

#include <gtest/gtest.h>

namespace nocta {
namespace {

/// No display has this number, and most systems have no such framework at all.
constexpr DisplayId nowhere = 0xFFFFFFF0;

TEST(DisplayServicesBacklight, FailsWhereThereIsNoSuchDisplay) {
    DisplayServicesBacklight backlight;
    float level = 0.25F;
    EXPECT_NE(backlight.getBrightness(nowhere, level), statusSuccess);
    EXPECT_EQ(level, 0.25F);
    EXPECT_NE(backlight.setBrightness(nowhere, 0.5F), statusSuccess);
}

} // namespace
} // namespace nocta
