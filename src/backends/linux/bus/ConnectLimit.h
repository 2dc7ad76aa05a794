#pragma once

#include <csignal>
#include <ctime>

namespace nocta {

/// Limits how long a D-Bus library blocks while it connects. The libraries wait forever for a bus
/// that accepts a connection and then stops responding. Every 150 ms, this object shuts down all
/// sockets that were opened after its construction, so the library reports that it could not
/// connect. Destroy it as soon as the library returns, and open no other sockets in between. Only
/// one object may exist at a time.
class ConnectLimit {
public:
    ConnectLimit();
    ConnectLimit(const ConnectLimit&) = delete;
    ConnectLimit& operator=(const ConnectLimit&) = delete;
    ~ConnectLimit();

private:
    timer_t timer_{};
    struct sigaction previous_ {};
};

} // namespace nocta
