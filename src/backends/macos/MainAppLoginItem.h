#pragma once

#include "backends/macos/Strings.h"
#include "platform/LoginItem.h"

#import <ServiceManagement/ServiceManagement.h>

namespace nocta {

/// This very bundle.
class MainAppLoginItem final : public LoginItem {
public:
    /// The cases have the same numbers.
    Status status() override { return static_cast<Status>(SMAppService.mainAppService.status); }

    std::optional<std::string> registerItem() override {
        NSError* error = nil;
        const BOOL isDone = [SMAppService.mainAppService registerAndReturnError:&error];
        return isDone ? std::nullopt : std::optional(stdString(error.localizedDescription));
    }
    std::optional<std::string> unregisterItem() override {
        NSError* error = nil;
        const BOOL isDone = [SMAppService.mainAppService unregisterAndReturnError:&error];
        return isDone ? std::nullopt : std::optional(stdString(error.localizedDescription));
    }
};

} // namespace nocta
