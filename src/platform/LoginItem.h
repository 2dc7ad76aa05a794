#pragma once

#include <optional>
#include <string>

namespace nocta {

/// Starts the program with the user's session. Stands for SMAppService.mainAppService.
class LoginItem {
public:
    enum class Status { notRegistered = 0, enabled = 1, requiresApproval = 2, notFound = 3 };

    virtual ~LoginItem() = default;

    /// As the desktop has it now; it may have been changed there.
    virtual Status status() = 0;

    /// Each returns the error's description, or nothing on success. Stand for
    /// registerAndReturnError: and unregisterAndReturnError:.
    virtual std::optional<std::string> registerItem() = 0;
    virtual std::optional<std::string> unregisterItem() = 0;
};

} // namespace nocta
