#pragma once

#include <optional>
#include <string>

namespace nocta {

/// Makes the program start when the user logs in. Corresponds to SMAppService.mainAppService on
/// macOS.
class LoginItem {
public:
    enum class Status { notRegistered = 0, enabled = 1, requiresApproval = 2, notFound = 3 };

    virtual ~LoginItem() = default;

    /// Returns the current status, which the user may have changed in the desktop's settings.
    virtual Status status() = 0;

    // These functions return a description of the error, or nothing on success. They correspond to
    // registerAndReturnError: and unregisterAndReturnError: on macOS.
    virtual std::optional<std::string> registerItem() = 0;
    virtual std::optional<std::string> unregisterItem() = 0;
};

} // namespace nocta
