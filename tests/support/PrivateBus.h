#pragma once

#include "support/Process.h"

#include <optional>
#include <string>

namespace nocta {

/// A message bus of the test's own, named in an environment variable. All buses of one variable
/// have one address, as the D-Bus library asks for it once.
class PrivateBus {
public:
    /// DBUS_SYSTEM_BUS_ADDRESS or DBUS_SESSION_BUS_ADDRESS.
    explicit PrivateBus(const std::string& variable);

    const std::string& address() const { return address_; }

    /// SIGSTOP makes it mute, SIGCONT lets it go on.
    void signal(int number) const { process_->signal(number); }

private:
    std::string address_;
    std::optional<Process> process_;
};

} // namespace nocta
