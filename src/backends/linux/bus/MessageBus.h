#pragma once

#include "backends/linux/bus/BusProbe.h"
#include "base/CallbackList.h"

#include <QDBusConnection>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace nocta {

/// Nocta's own connection to one of the message buses. A bus that accepts and stays mute counts as
/// missing until it answers; nobody waits for it but for the moment that a good one needs, counted
/// from the first question. The connection is made when it is first asked for, and made anew when
/// its bus has gone and come back; the toolkit's own never come back. Both live as long as the
/// process. A bus that falls silent just after its answer is not guarded against: the D-Bus library
/// waits for it when it connects.
class MessageBus {
public:
    static MessageBus& session();
    static MessageBus& system();

    MessageBus(const MessageBus&) = delete;
    MessageBus& operator=(const MessageBus&) = delete;

    /// Gives the bus this long to answer. Needs no application object yet.
    BusProbe::State waitFor(std::chrono::milliseconds time);

    /// Where the bus is, by the environment as it is now or was at `keepAddress`.
    std::string address() const { return keptAddress_ ? *keptAddress_ : environmentAddress_(); }
    void keepAddress() { keptAddress_ = address(); }

    /// Whether its answer is still waited for.
    bool isMute() const { return isExpected_; }

    /// Not connected as long as the bus is missing. From an asked one on, it is connected as soon
    /// as it answers.
    QDBusConnection connection();

    /// Calls back each time that a connection has been made, and at once if there is one.
    Subscription whenConnected(std::function<void(const QDBusConnection&)> callback);

private:
    MessageBus(QString name, std::string (*environmentAddress)());
    void settle();

    QString name_;
    std::string (*environmentAddress_)();
    std::optional<std::string> keptAddress_;
    std::unique_ptr<BusProbe> probe_;
    std::chrono::steady_clock::time_point askedAt_;
    bool isExpected_ = false; ///< an answer that the event loop will see
    CallbackList<QDBusConnection> observers_;
};

inline QDBusConnection systemBus() {
    return MessageBus::system().connection();
}
inline QDBusConnection sessionBus() {
    return MessageBus::session().connection();
}

} // namespace nocta
