#pragma once

#include "base/NotificationCenter.h"
#include "platform/Displays.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <vector>

namespace nocta {

/// The contract of the displays on every desktop. `Harness` starts with one display and has
/// `displays()` and `notificationCenter()`. `plug()` adds a second display, and returns once the
/// program has been notified. `DisplayRemovalContract.h` is for displays that can also be removed.
template <class Harness>
class DisplaysContract : public ::testing::Test {
protected:
    std::vector<DisplayId> list() {
        std::uint32_t count = 0;
        EXPECT_EQ(harness.displays().getActiveDisplayList({}, count), statusSuccess);
        std::vector<DisplayId> ids(count);
        EXPECT_EQ(harness.displays().getActiveDisplayList(ids, count), statusSuccess);
        EXPECT_EQ(count, ids.size());
        return ids;
    }

    Harness harness;
};

TYPED_TEST_SUITE_P(DisplaysContract);

TYPED_TEST_P(DisplaysContract, ListIsCountedAndThenFilled) {
    EXPECT_EQ(this->list().size(), 1U);
    std::array<DisplayId, 4> room{};
    std::uint32_t count = 0;
    this->harness.displays().getActiveDisplayList(room, count);
    EXPECT_EQ(count, 1U) << "only the displays should be counted, not the free space";
}

TYPED_TEST_P(DisplaysContract, DisplayHasItsModeAndBounds) {
    const auto id = this->list().at(0);
    const auto mode = this->harness.displays().displayCopyDisplayMode(id);
    ASSERT_TRUE(mode.has_value());
    const auto bounds = this->harness.displays().displayBounds(id);
    EXPECT_EQ(bounds.width, mode->width);
    EXPECT_EQ(bounds.height, mode->height);
}

TYPED_TEST_P(DisplaysContract, UnknownDisplayHasNoData) {
    constexpr DisplayId unknown = 0xDEAD;
    EXPECT_EQ(this->harness.displays().displayBounds(unknown), Rect{});
    EXPECT_FALSE(this->harness.displays().displayIsMain(unknown));
    EXPECT_FALSE(this->harness.displays().displayIsBuiltin(unknown));
    EXPECT_EQ(this->harness.displays().displayCopyDisplayMode(unknown), std::nullopt);
}

TYPED_TEST_P(DisplaysContract, AddedDisplayIsReportedWithTheNewList) {
    std::vector<std::size_t> sizes;
    const auto subscription = this->harness.notificationCenter().observe(
        didChangeScreenParametersNotification, [&] { sizes.push_back(this->list().size()); });
    this->harness.plug();
    ASSERT_FALSE(sizes.empty());
    EXPECT_EQ(sizes.back(), 2U);
}

REGISTER_TYPED_TEST_SUITE_P(DisplaysContract, ListIsCountedAndThenFilled,
                            DisplayHasItsModeAndBounds, UnknownDisplayHasNoData,
                            AddedDisplayIsReportedWithTheNewList);

} // namespace nocta
