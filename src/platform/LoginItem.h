#pragma once

#include <optional>
#include <string>

namespace nocta {

/// Starts the program with the user's session. Stands for SMAppService.mainAppService.
class LoginItem {
public:
    enum class Status { notRegistered = 0, enabled = 1, requiresApproval = 2, notFound = 3 };

    virtual ~LoginItem() = default;

    /// The present status; the user may have changed it in the desktop's settings.
    virtual Status status() = 0;

    // They return a description of the error, or nothing on success. They stand for
    // registerAndReturnError: and unregisterAndReturnError:.
    virtual std::optional<std::string> registerItem() = 0;
    virtual std::optional<std::string> unregisterItem() = 0;
};

} // namespace nocta
