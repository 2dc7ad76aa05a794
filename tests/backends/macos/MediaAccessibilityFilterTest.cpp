#include "backends/macos/MediaAccessibilityFilter.h"

#include <gtest/gtest.h>

namespace nocta {
namespace {

/// The functions are missing because the test program does not link to their framework.
TEST(MediaAccessibilityFilter, MissingFunctionsAreNotCalledAndReturnZero) {
    MediaAccessibilityFilter filter;
    filter.setType(1, 1);
    filter.setCategoryEnabled(1, true);
    EXPECT_EQ(filter.getType(1), 0);
    EXPECT_FALSE(filter.getCategoryEnabled(1));
}

} // namespace
} // namespace nocta
