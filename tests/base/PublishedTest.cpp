#include "base/Published.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nocta {
namespace {

using Values = std::vector<int>;

TEST(Published, NewSubscriptionDoesNotDeliverTheCurrentValue) {
    Published<int> value(3);
    Values seen;
    const auto subscription = value.subscribe([&](int v) { seen.push_back(v); });
    EXPECT_TRUE(seen.empty());
    value.set(4);
    EXPECT_EQ(seen, Values{4});
}

TEST(Published, EveryWriteNotifiesEvenIfTheValueIsEqual) {
    Published<int> value(3);
    Values seen;
    const auto subscription = value.subscribe([&](int v) { seen.push_back(v); });
    value.set(3);
    value.set(3);
    EXPECT_EQ(seen, (Values{3, 3}));
}

TEST(Published, ValueIsStoredBeforeItIsDelivered) {
    Published<int> value(1);
    int stored = 0;
    const auto subscription = value.subscribe([&](int /*v*/) { stored = value.get(); });
    value.set(2);
    EXPECT_EQ(stored, 2);
}

TEST(Published, SubscribersAreCalledInOrderOfSubscription) {
    Published<int> value;
    std::string order;
    const auto first = value.subscribe([&](int /*v*/) { order += 'a'; });
    const auto second = value.subscribe([&](int /*v*/) { order += 'b'; });
    value.set(1);
    EXPECT_EQ(order, "ab");
}

TEST(Published, DestroyedSubscriptionIsNotCalled) {
    Published<int> value;
    Values seen;
    {
        const auto subscription = value.subscribe([&](int v) { seen.push_back(v); });
    }
    value.set(1);
    EXPECT_TRUE(seen.empty());
}

TEST(Published, SubscriptionDestroyedDuringADeliveryIsNotCalled) {
    Published<int> value;
    Values seen;
    Subscription later;
    const auto first = value.subscribe([&](int /*v*/) { later = Subscription(); });
    later = value.subscribe([&](int v) { seen.push_back(v); });
    value.set(1);
    EXPECT_TRUE(seen.empty());
}

TEST(Published, SubscriptionMayEndInsideItsOwnCallback) {
    Published<int> value;
    const auto token = std::make_shared<int>(0);
    Subscription own;
    own = value.subscribe([&own, token](int /*v*/) {
        own = Subscription();
        ++*token; // the callback's captures must still exist
    });
    value.set(1);
    value.set(2);
    EXPECT_EQ(*token, 1);
    EXPECT_EQ(token.use_count(), 1);
}

TEST(Published, SubscriptionAddedDuringADeliveryIsNotCalledUntilTheNextOne) {
    Published<int> value;
    Values seen;
    Subscription added;
    const auto first = value.subscribe([&](int /*v*/) {
        if (!added) {
            added = value.subscribe([&](int v) { seen.push_back(v); });
        }
    });
    value.set(1);
    EXPECT_TRUE(seen.empty());
    value.set(2);
    EXPECT_EQ(seen, Values{2});
}

TEST(Published, NestedWriteIsDeliveredInFullAndEndsTheOuterDelivery) {
    Published<int> value;
    Values first;
    Values second;
    const auto clamping = value.subscribe([&](int v) {
        first.push_back(v);
        if (v > 10) {
            value.set(10);
        }
    });
    const auto following = value.subscribe([&](int v) { second.push_back(v); });
    value.set(99);
    EXPECT_EQ(first, (Values{99, 10}));
    EXPECT_EQ(second, Values{10});
    EXPECT_EQ(value.get(), 10);
}

TEST(Published, CallbackKeepsItsValueWhileANestedWriteReplacesIt) {
    Published<std::string> value;
    std::string afterNested;
    const auto subscription = value.subscribe([&](const std::string& v) {
        if (v == "outer, long enough to be allocated") {
            value.set("inner, long enough to be allocated");
            afterNested = v;
        }
    });
    value.set("outer, long enough to be allocated");
    EXPECT_EQ(afterNested, "outer, long enough to be allocated");
}

TEST(Published, PublisherMayBeDestroyedDuringADelivery) {
    auto value = std::make_unique<Published<int>>();
    Values seen;
    const auto killer = value->subscribe([&](int v) {
        value.reset();
        seen.push_back(v);
    });
    const auto later = value->subscribe([&](int v) { seen.push_back(v); });
    value->set(1);
    EXPECT_EQ(seen, Values{1});
}

TEST(Published, SubscriptionMayOutliveItsPublisher) {
    std::optional<Published<int>> value(std::in_place, 1);
    auto subscription = value->subscribe([](int /*v*/) {});
    value.reset();
    subscription.cancel();
    EXPECT_FALSE(subscription);
}

TEST(Published, MovedSubscriptionStaysSubscribed) {
    Published<int> value;
    Values seen;
    auto subscription = value.subscribe([&](int v) { seen.push_back(v); });
    Cancellables cancellables;
    cancellables.push_back(std::move(subscription));
    value.set(1);
    cancellables.clear();
    value.set(2);
    EXPECT_EQ(seen, Values{1});
}

} // namespace
} // namespace nocta
