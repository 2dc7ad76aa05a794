#pragma once

#include "backends/linux/bus/BusMessage.h"
#include "backends/linux/files/FileDescriptor.h"

#include <QSocketNotifier>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace nocta {

/// Sends one method call to a message bus, and never waits longer than the caller allows. It uses
/// its own connection, which closes with this object. The D-Bus libraries block on a bus that
/// accepts a connection and then stays silent, and Qt blocks on a service that stays silent. So
/// neither the libraries nor Qt may connect until the bus or the service has answered a probe. Only
/// Unix sockets are supported, which is what desktops use. The call does not start a service.
class BusProbe {
public:
    enum class State {
        pending,  ///< no answer yet
        answered, ///< an error counts as an answer
        failed    ///< there is no message bus at the address, or it rejects this user
    };

    /// `addresses` has the format of the environment variable: one or more, separated by
    /// semicolons.
    explicit BusProbe(std::string_view addresses, BusQuestion question = {});

    State state() const { return state_; }

    /// The address that the probe uses.
    const std::string& address() const { return address_; }

    /// Returns when the probe is no longer pending or the time is up.
    State waitFor(std::chrono::milliseconds time);

    /// Calls `callback` once, from the event loop, when the probe is no longer pending. The
    /// callback may destroy this object. Call this only while the probe is pending.
    void whenDone(std::function<void()> callback);

    const std::optional<BusMessage>& answer() const { return answer_; }

private:
    State advance();
    bool readMore();
    void readGreeting();
    void readMessage();
    void send(const std::string& bytes);

    BusQuestion question_;
    std::string address_;
    FileDescriptor socket_;
    State state_ = State::failed;
    bool isAuthenticated_ = false;
    std::string received_;
    std::optional<BusMessage> answer_;
    std::unique_ptr<QSocketNotifier> readable_;
};

/// The addresses of the user's session bus and of the system bus: from the environment, or the
/// default. Empty if there is no address. Never starts a bus.
std::string sessionBusAddress();
std::string systemBusAddress();

} // namespace nocta
