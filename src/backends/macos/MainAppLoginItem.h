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

/// This very bundle. Registering one that is registered is an error to the system, and so is the
/// opposite; here what already is as wished is none.
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
