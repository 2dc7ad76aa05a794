#pragma once

#include "support/Process.h"

#include <optional>
#include <string>

namespace nocta {

/// A private message bus for the test, named in an environment variable. All buses of one variable
/// have the same address, because the D-Bus library reads it only once.
class PrivateBus {
public:
    /// DBUS_SYSTEM_BUS_ADDRESS or DBUS_SESSION_BUS_ADDRESS.
    explicit PrivateBus(const std::string& variable);

    const std::string& address() const { return address_; }

    /// SIGSTOP makes it mute, SIGCONT lets it continue.
    void signal(int number) const { process_->signal(number); }

private:
    std::string address_;
    std::optional<Process> process_;
};

} // namespace nocta
