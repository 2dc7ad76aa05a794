#pragma once

#include "backends/virtual/Trace.h"
#include "platform/LoginItem.h"

#include <optional>
#include <string>

namespace nocta {

/// A session that starts the program, or does not.
class VirtualLoginItem final : public LoginItem {
public:
    explicit VirtualLoginItem(Trace& trace) : trace_(trace) {}

    /// As a person may change it in the desktop's own tool.
    Status present = Status::notRegistered;
    /// What every change fails with.
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
