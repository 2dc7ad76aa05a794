#pragma once

#include "backends/macos/Statuses.h"
#include "backends/macos/Strings.h"
#include "platform/LoginItem.h"

#import <ServiceManagement/ServiceManagement.h>

namespace nocta {

static_assert(loginItemStatus(SMAppServiceStatusNotRegistered) == LoginItem::Status::notRegistered);
static_assert(loginItemStatus(SMAppServiceStatusEnabled) == LoginItem::Status::enabled);
static_assert(loginItemStatus(SMAppServiceStatusRequiresApproval) ==
              LoginItem::Status::requiresApproval);
static_assert(loginItemStatus(SMAppServiceStatusNotFound) == LoginItem::Status::notFound);

/// The login item of this bundle. The system reports an error when a registered item is registered
/// again or an unregistered item is unregistered; this class reports no error in these cases.
class MainAppLoginItem final : public LoginItem {
public:
    Status status() override { return loginItemStatus(SMAppService.mainAppService.status); }

    std::optional<std::string> registerItem() override {
        NSError* error = nil;
        const BOOL isDone = [SMAppService.mainAppService registerAndReturnError:&error];
        return isDone || status() == Status::enabled
                   ? std::nullopt
                   : std::optional(stdString(error.localizedDescription));
    }
    std::optional<std::string> unregisterItem() override {
        NSError* error = nil;
        const BOOL isDone = [SMAppService.mainAppService unregisterAndReturnError:&error];
        return isDone || status() == Status::notRegistered || status() == Status::notFound
                   ? std::nullopt
                   : std::optional(stdString(error.localizedDescription));
    }
};

} // namespace nocta
