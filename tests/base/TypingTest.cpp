#include "base/Typing.h"

#include <gtest/gtest.h>

#include <chrono>

namespace nocta {
namespace {

using namespace std::chrono_literals;

constexpr MonotonicTime moment{1h};

TEST(Typing, TypingWithoutKeysIsNotFromBefore) {
    EXPECT_FALSE(Typing().isFromBefore(moment));
}

TEST(Typing, KeysWithoutAPauseContinueTypingFromBeforeTheMoment) {
    Typing typing;
    typing.press(moment - 1ms);
    for (int key = 1; key < 100; ++key) {
        typing.press(moment - 1ms + key * 499ms);
        EXPECT_TRUE(typing.isFromBefore(moment)) << key;
    }
}

TEST(Typing, PauseOfHalfASecondEndsTyping) {
    Typing typing;
    typing.press(moment - 1ms);
    typing.press(moment - 1ms + 500ms);
    EXPECT_FALSE(typing.isFromBefore(moment));
    typing.press(moment + 500ms);
    EXPECT_FALSE(typing.isFromBefore(moment))
        << "typing that began after the moment should not count as earlier typing";
}

TEST(Typing, FirstKeyAtTheMomentIsNotFromBefore) {
    Typing typing;
    typing.press(moment);
    EXPECT_FALSE(typing.isFromBefore(moment));
}

} // namespace
} // namespace nocta
