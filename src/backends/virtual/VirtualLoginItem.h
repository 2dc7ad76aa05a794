#pragma once

#include "backends/virtual/Trace.h"
#include "platform/LoginItem.h"

#include <optional>
#include <string>

namespace nocta {

/// The login items of a session, in memory.
class VirtualLoginItem final : public LoginItem {
public:
    explicit VirtualLoginItem(Trace& trace) : trace_(trace) {}

    /// The current status. The user may change it in the desktop's settings.
    Status present = Status::notRegistered;
    /// If set, every change fails with this error.
    std::optional<std::string> error;

    Status status() override {
        trace_.record("loginItem status");
        return present;
    }
    std::optional<std::string> registerItem() override {
        trace_.record("loginItem register");
        return change(Status::enabled);
    }
    std::optional<std::string> unregisterItem() override {
        trace_.record("loginItem unregister");
        return change(Status::notRegistered);
    }

private:
    std::optional<std::string> change(Status status) {
        if (!error) {
            present = status;
        }
        return error;
    }

    Trace& trace_;
};

} // namespace nocta
