#pragma once

#include "support/Process.h"

#include <optional>
#include <string>

namespace nocta {

/// A private message bus for the test. An environment variable contains the address of the bus. All
/// buses for one variable share an address, because the D-Bus library reads the variable only once.
class PrivateBus {
public:
    /// `variable` is DBUS_SYSTEM_BUS_ADDRESS or DBUS_SESSION_BUS_ADDRESS.
    explicit PrivateBus(const std::string& variable);

    const std::string& address() const { return address_; }

    /// SIGSTOP makes the bus stop answering; SIGCONT lets the bus continue.
    void signal(int number) const { process_->signal(number); }

private:
    std::string address_;
    std::optional<Process> process_;
};

} // namespace nocta
