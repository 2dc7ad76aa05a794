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

/// Asks one question on a message bus without ever waiting, over a connection of its own that ends
/// with this object. The D-Bus libraries wait for a bus that accepts a connection and stays mute,
/// and the toolkit for a service that does; so neither is let near one before it has answered here.
/// Only Unix sockets are known, which is what desktops use. No service is started by a question.
class BusProbe {
public:
    enum class State {
        pending,  ///< not answered yet, perhaps never
        answered, ///< an error is an answer as well
        failed    ///< nobody listens, or what listens is no message bus that takes this user
    };

    /// `addresses` as in the environment: one or more, separated by semicolons.
    explicit BusProbe(std::string_view addresses, BusQuestion question = {});

    State state() const { return state_; }

    /// Of the addresses, the one that is used.
    const std::string& address() const { return address_; }

    /// Returns when it is no longer pending, or the time is up.
    State waitFor(std::chrono::milliseconds time);

    /// Called once from the event loop when it is no longer pending. The callback may destroy this
    /// object. Only for a pending one.
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

/// The addresses of the user's session bus and of the system's: the environment's, or the usual
/// place. Empty where there is none. No bus is ever started to have one.
std::string sessionBusAddress();
std::string systemBusAddress();

} // namespace nocta
