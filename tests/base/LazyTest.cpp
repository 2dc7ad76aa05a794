#include "base/Lazy.h"

#include <gtest/gtest.h>

#include <string>

namespace nocta {
namespace {

TEST(Lazy, ObjectIsCreatedOnceOnFirstUse) {
    int made = 0;
    Lazy<std::string> text([&](std::optional<std::string>& place) {
        place.emplace("made");
        ++made;
    });
    EXPECT_EQ(made, 0);
    text() += " once";
    EXPECT_EQ(text(), "made once");
    EXPECT_EQ(made, 1);
}

TEST(Lazy, DependencyIsCreatedFirst) {
    std::string order;
    Lazy<int> first([&](std::optional<int>& place) {
        order += 'a';
        place = 1;
    });
    Lazy<int> second([&](std::optional<int>& place) {
        place = first() + 1;
        order += 'b';
    });
    EXPECT_EQ(second(), 2);
    EXPECT_EQ(order, "ab");
}

} // namespace
} // namespace nocta
