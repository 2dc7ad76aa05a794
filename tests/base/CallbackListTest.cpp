#include "base/CallbackList.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace nocta {
namespace {

class CallbackListTest : public ::testing::Test {
protected:
    std::optional<CallbackList<char>> list{std::in_place};
    std::string called;

    Subscription add(char name) {
        return list->add([this, name](char argument) { called += {name, argument}; });
    }
};

TEST_F(CallbackListTest, CallbacksGetTheArgumentInOrderOfSubscription) {
    const auto first = add('a');
    const auto second = add('b');
    list->call('1');
    list->call('2');
    EXPECT_EQ(called, "a1b1a2b2");
}

TEST_F(CallbackListTest, CanceledSubscriptionIsNotCalled) {
    auto first = add('a');
    const auto second = add('b');
    first.cancel();
    list->call('1');
    EXPECT_EQ(called, "b1");
}

TEST_F(CallbackListTest, SubscriptionCanceledDuringADeliveryIsNotCalled) {
    Subscription later;
    const auto first = list->add([&](char /*argument*/) { later.cancel(); });
    later = add('b');
    const auto last = add('c');
    list->call('1');
    EXPECT_EQ(called, "c1");
}

TEST_F(CallbackListTest, CallbackMayCancelItsOwnSubscription) {
    Subscription own;
    own = list->add([&](char argument) {
        called += argument;
        own.cancel();
    });
    const auto other = add('b');
    list->call('1');
    list->call('2');
    EXPECT_EQ(called, "1b1b2");
}

TEST_F(CallbackListTest, CallbackAddedDuringADeliveryIsNotCalledUntilTheNextOne) {
    Subscription added;
    bool isAdded = false;
    const auto first = list->add([&](char /*argument*/) {
        if (!isAdded) {
            isAdded = true;
            added = add('b');
        }
    });
    list->call('1');
    EXPECT_EQ(called, "");
    list->call('2');
    EXPECT_EQ(called, "b2");
}

TEST_F(CallbackListTest, DeliveryStopsWhenTheConditionFails) {
    const auto first = add('a');
    const auto second = add('b');
    int asked = 0;
    list->callWhile([&] { return ++asked == 1; }, '1');
    EXPECT_EQ(called, "a1");
}

TEST_F(CallbackListTest, SubscriptionMayOutliveTheList) {
    auto first = add('a');
    list.reset();
    first.cancel();
    EXPECT_EQ(called, "");
}

} // namespace
} // namespace nocta
