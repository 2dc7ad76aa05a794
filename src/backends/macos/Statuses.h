#pragma once

#include "platform/LocationManager.h"
#include "platform/LoginItem.h"

#include <cstdint>

namespace nocta {

/// Converts the raw value of a CLAuthorizationStatus. An unknown value is treated as a refusal.
constexpr AuthorizationStatus authorizationStatus(std::int64_t native) {
    switch (native) {
    case 0:
        return AuthorizationStatus::notDetermined;
    case 2:
        return AuthorizationStatus::denied;
    case 3:
        return AuthorizationStatus::authorized;
    case 4:
        return AuthorizationStatus::authorizedWhenInUse;
    default:
        return AuthorizationStatus::restricted; // 1
    }
}

/// Converts the number of an SMAppServiceStatus. An unknown number means that the item is not
/// enabled.
constexpr LoginItem::Status loginItemStatus(std::int64_t native) {
    switch (native) {
    case 0:
        return LoginItem::Status::notRegistered;
    case 1:
        return LoginItem::Status::enabled;
    case 2:
        return LoginItem::Status::requiresApproval;
    default:
        return LoginItem::Status::notFound; // 3
    }
}

} // namespace nocta
