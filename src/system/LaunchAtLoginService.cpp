#include "system/LaunchAtLoginService.h"

#include <iostream>

namespace nocta {

LaunchAtLoginService::LaunchAtLoginService(LoginItem& loginItem)
    : isEnabled(loginItem.status() == LoginItem::Status::enabled), loginItem_(loginItem) {}

void LaunchAtLoginService::enable() {
    if (const auto error = loginItem_.registerItem()) {
        std::cout << "Failed to enable launch at login: " << *error << std::endl;
        return;
    }
    isEnabled.set(true);
}

void LaunchAtLoginService::disable() {
    if (const auto error = loginItem_.unregisterItem()) {
        std::cout << "Failed to disable launch at login: " << *error << std::endl;
        return;
    }
    isEnabled.set(false);
}

} // namespace nocta
