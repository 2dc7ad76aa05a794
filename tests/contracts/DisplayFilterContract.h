#pragma once

#include "platform/DisplayFilter.h"
#include "platform/DynamicLibraries.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace nocta {

/// The contract of the gray filter on every desktop that supports one. `Harness` has
/// `displayFilter()`, `dynamicLibraries()` and `isGray()`, which returns whether the user sees a
/// gray screen.
template <class Harness>
class DisplayFilterContract : public ::testing::Test {
protected:
    static constexpr std::int32_t color = 1;
    static constexpr std::int32_t grayscale = 1;

    DisplayFilter& filter() { return harness.displayFilter(); }

    /// Applies the preferences as the service does.
    void apply() {
        auto& libraries = harness.dynamicLibraries();
        const auto library = libraries.open("/usr/lib/libUniversalAccess.dylib");
        ASSERT_NE(library, 0U);
        const auto start = libraries.symbol(library, "_UniversalAccessDStart");
        ASSERT_TRUE(start);
        start(1);
        libraries.close(library);
    }

    Harness harness;
};

TYPED_TEST_SUITE_P(DisplayFilterContract);

TYPED_TEST_P(DisplayFilterContract, NothingIsSetAtFirst) {
    EXPECT_EQ(this->filter().getType(this->color), 0);
    EXPECT_FALSE(this->filter().getCategoryEnabled(this->color));
    EXPECT_FALSE(this->harness.isGray());
}

TYPED_TEST_P(DisplayFilterContract, PreferencesAreReadBack) {
    this->filter().setType(this->color, this->grayscale);
    EXPECT_EQ(this->filter().getType(this->color), this->grayscale);
    this->filter().setCategoryEnabled(this->color, true);
    EXPECT_TRUE(this->filter().getCategoryEnabled(this->color));
    this->filter().setCategoryEnabled(this->color, false);
    EXPECT_FALSE(this->filter().getCategoryEnabled(this->color));
    EXPECT_EQ(this->filter().getType(this->color), this->grayscale);
}

TYPED_TEST_P(DisplayFilterContract, ScreenFollowsTheAppliedPreferences) {
    this->filter().setType(this->color, this->grayscale);
    this->filter().setCategoryEnabled(this->color, true);
    this->apply();
    EXPECT_TRUE(this->harness.isGray());
    this->filter().setCategoryEnabled(this->color, false);
    this->apply();
    EXPECT_FALSE(this->harness.isGray());
}

REGISTER_TYPED_TEST_SUITE_P(DisplayFilterContract, NothingIsSetAtFirst, PreferencesAreReadBack,
                            ScreenFollowsTheAppliedPreferences);

} // namespace nocta
