#pragma once

#include "platform/LoginItem.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace nocta {

/// The contract of every login item. `Harness` has a `loginItem()` that is not registered at first.
/// `switchOff()` disables the item as a user does in the desktop's own settings. After `refuse()`,
/// the desktop refuses to register anything.
template <class Harness>
class LoginItemContract : public ::testing::Test {
protected:
    LoginItem& loginItem() { return harness.loginItem(); }
    Harness harness;
};

TYPED_TEST_SUITE_P(LoginItemContract);

TYPED_TEST_P(LoginItemContract, RegisteredItemIsEnabledUntilItIsUnregistered) {
    EXPECT_EQ(this->loginItem().status(), LoginItem::Status::notRegistered);
    EXPECT_EQ(this->loginItem().registerItem(), std::nullopt);
    EXPECT_EQ(this->loginItem().status(), LoginItem::Status::enabled);
    EXPECT_EQ(this->loginItem().unregisterItem(), std::nullopt);
    EXPECT_EQ(this->loginItem().status(), LoginItem::Status::notRegistered);
}

TYPED_TEST_P(LoginItemContract, RepeatedCallsAreNotErrors) {
    EXPECT_EQ(this->loginItem().unregisterItem(), std::nullopt);
    EXPECT_EQ(this->loginItem().status(), LoginItem::Status::notRegistered);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(this->loginItem().registerItem(), std::nullopt);
        EXPECT_EQ(this->loginItem().status(), LoginItem::Status::enabled);
    }
}

TYPED_TEST_P(LoginItemContract, ItemThatWasSwitchedOffIsEnabledByRegisteringItAgain) {
    ASSERT_EQ(this->loginItem().registerItem(), std::nullopt);
    this->harness.switchOff();
    EXPECT_NE(this->loginItem().status(), LoginItem::Status::enabled);
    EXPECT_EQ(this->loginItem().registerItem(), std::nullopt);
    EXPECT_EQ(this->loginItem().status(), LoginItem::Status::enabled);
}

TYPED_TEST_P(LoginItemContract, ItemThatWasSwitchedOffCanBeUnregistered) {
    ASSERT_EQ(this->loginItem().registerItem(), std::nullopt);
    this->harness.switchOff();
    EXPECT_EQ(this->loginItem().unregisterItem(), std::nullopt);
    EXPECT_EQ(this->loginItem().status(), LoginItem::Status::notRegistered);
}

TYPED_TEST_P(LoginItemContract, RefusalIsDescribedAndChangesNothing) {
    this->harness.refuse();
    const auto error = this->loginItem().registerItem();
    ASSERT_NE(error, std::nullopt);
    EXPECT_NE(*error, "");
    EXPECT_EQ(this->loginItem().status(), LoginItem::Status::notRegistered);
}

REGISTER_TYPED_TEST_SUITE_P(LoginItemContract, RegisteredItemIsEnabledUntilItIsUnregistered,
                            RepeatedCallsAreNotErrors,
                            ItemThatWasSwitchedOffIsEnabledByRegisteringItAgain,
                            ItemThatWasSwitchedOffCanBeUnregistered,
                            RefusalIsDescribedAndChangesNothing);

} // namespace nocta
