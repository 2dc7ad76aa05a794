#include "backends/macos/Statuses.h"

#include <gtest/gtest.h>

namespace nocta {
namespace {

TEST(Statuses, AuthorizationNumbersAreMapped) {
    EXPECT_EQ(authorizationStatus(0), AuthorizationStatus::notDetermined);
    EXPECT_EQ(authorizationStatus(1), AuthorizationStatus::restricted);
    EXPECT_EQ(authorizationStatus(2), AuthorizationStatus::denied);
    EXPECT_EQ(authorizationStatus(3), AuthorizationStatus::authorized);
    EXPECT_EQ(authorizationStatus(4), AuthorizationStatus::authorizedWhenInUse);
}

TEST(Statuses, UnknownAuthorizationIsRestricted) {
    for (const std::int64_t native : {-1, 5, 1000}) {
        EXPECT_EQ(authorizationStatus(native), AuthorizationStatus::restricted) << native;
    }
}

TEST(Statuses, LoginItemNumbersAreMapped) {
    EXPECT_EQ(loginItemStatus(0), LoginItem::Status::notRegistered);
    EXPECT_EQ(loginItemStatus(1), LoginItem::Status::enabled);
    EXPECT_EQ(loginItemStatus(2), LoginItem::Status::requiresApproval);
    EXPECT_EQ(loginItemStatus(3), LoginItem::Status::notFound);
}

TEST(Statuses, UnknownLoginItemIsNotFound) {
    for (const std::int64_t native : {-1, 4, 1000}) {
        EXPECT_EQ(loginItemStatus(native), LoginItem::Status::notFound) << native;
    }
}

} // namespace
} // namespace nocta
