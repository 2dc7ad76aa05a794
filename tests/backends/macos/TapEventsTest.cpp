#include "backends/macos/TapEvents.h"

#include <gtest/gtest.h>

namespace nocta {
namespace {

TEST(TapEvents, KeyDownIsType10) {
    EXPECT_EQ(tapEvent(10), TapEvent::keyDown);
}

TEST(TapEvents, TapIsDisabledByATimeoutOrByTheUser) {
    EXPECT_EQ(tapEvent(0xFFFFFFFE), TapEvent::disabled) << "a timeout should disable the tap";
    EXPECT_EQ(tapEvent(0xFFFFFFFF), TapEvent::disabled) << "user input should disable the tap";
}

TEST(TapEvents, OtherEventsAreIgnored) {
    for (const std::uint32_t type : {0U, 1U, 9U, 11U, 12U, 14U, 0xFFFFFFFDU}) {
        EXPECT_EQ(tapEvent(type), TapEvent::other) << type;
    }
}

} // namespace
} // namespace nocta
