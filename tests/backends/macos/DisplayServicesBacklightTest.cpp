#include "backends/macos/DisplayServicesBacklight.h"

#include <gtest/gtest.h>

#include <cstdint>

// What a search of the whole program would find. They succeed, so that a call of them shows.
extern "C" {
__attribute__((visibility("default"), used)) int
DisplayServicesGetBrightness(std::uint32_t /*display*/, float* level) {
    *level = 1;
    return 0;
}
__attribute__((visibility("default"), used)) int
DisplayServicesSetBrightness(std::uint32_t /*display*/, float /*level*/) {
    return 0;
}
}

namespace nocta {
namespace {

/// No display has this number, and most systems have no such framework at all.
constexpr DisplayId nowhere = 0xFFFFFFF0;

TEST(DisplayServicesBacklight, FailsWhereTheFrameworkOrTheDisplayIsMissing) {
    DisplayServicesBacklight backlight;
    float level = 0.25F;
    EXPECT_NE(backlight.getBrightness(nowhere, level), statusSuccess);
    EXPECT_EQ(level, 0.25F);
    EXPECT_NE(backlight.setBrightness(nowhere, 0.5F), statusSuccess);
}

} // namespace
} // namespace nocta
