#include "backends/macos/DisplayServicesBacklight.h"

#include <gtest/gtest.h>

#include <cstdint>

// The backlight must use only the framework's functions. A symbol lookup in the whole program would
// find the functions below instead. They return success, so the test fails if they are called.
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

/// No display has this ID, and most systems do not have the framework at all.
constexpr DisplayId nowhere = 0xFFFFFFF0;

TEST(DisplayServicesBacklight, FailsIfTheFrameworkOrTheDisplayIsMissing) {
    DisplayServicesBacklight backlight;
    float level = 0.25F;
    EXPECT_NE(backlight.getBrightness(nowhere, level), statusSuccess);
    EXPECT_EQ(level, 0.25F);
    EXPECT_NE(backlight.setBrightness(nowhere, 0.5F), statusSuccess);
}

} // namespace
} // namespace nocta
