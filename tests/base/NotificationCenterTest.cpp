#include "base/NotificationCenter.h"

#include <gtest/gtest.h>

#include <string>

namespace nocta {
namespace {

TEST(NotificationCenter, CallsTheObserversOfANameInOrder) {
    NotificationCenter center;
    std::string order;
    const auto first = center.observe("a", [&] { order += '1'; });
    const auto second = center.observe("a", [&] { order += '2'; });
    const auto other = center.observe("b", [&] { order += 'b'; });
    center.post("a");
    EXPECT_EQ(order, "12");
}

TEST(NotificationCenter, PostWithoutObserversDoesNothing) {
    NotificationCenter center;
    center.post("nobody");
    auto subscription = center.observe("gone", [] { FAIL(); });
    subscription.cancel();
    center.post("gone");
}

TEST(NotificationCenter, NestedPostsReachEveryObserverEachTime) {
    NotificationCenter center;
    int first = 0;
    int second = 0;
    const auto repeating = center.observe("a", [&] {
        if (++first == 1) {
            center.post("a");
        }
    });
    const auto counting = center.observe("a", [&] { ++second; });
    center.post("a");
    EXPECT_EQ(first, 2);
    EXPECT_EQ(second, 2);
}

} // namespace
} // namespace nocta
