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

/// Nocta's own connection to one of the message buses. A bus that accepts a connection and stays
/// silent counts as missing until it answers. Callers wait at most as long as a working bus needs
/// to answer, counted from the first call. The connection is made on first use, and again after the
/// bus has been restarted; Qt's own connections never reconnect. Both connections live as long as
/// the process.
class MessageBus {
public:
    static MessageBus& session();
    static MessageBus& system();

    MessageBus(const MessageBus&) = delete;
    MessageBus& operator=(const MessageBus&) = delete;

    /// Waits for the bus to answer, but no longer than `time`. Works even before the application
    /// object exists.
    BusProbe::State waitFor(std::chrono::milliseconds time);

    /// The address of the bus: the one that `keepAddress` has saved, or else the one in the
    /// environment.
    std::string address() const { return keptAddress_ ? *keptAddress_ : environmentAddress_(); }
    void keepAddress() { keptAddress_ = address(); }

    /// Whether an answer from the bus is still outstanding.
    bool isMute() const { return isExpected_; }

    /// The connection is not open while the bus is missing. After the first call, it is opened as
    /// soon as the bus answers.
    QDBusConnection connection();

    /// Calls `callback` whenever a connection has been made, and immediately if a connection
    /// exists.
    Subscription whenConnected(std::function<void(const QDBusConnection&)> callback);

private:
    MessageBus(QString name, std::string (*environmentAddress)());
    void settle();

    QString name_;
    std::string (*environmentAddress_)();
    std::optional<std::string> keptAddress_;
    std::unique_ptr<BusProbe> probe_;
    std::chrono::steady_clock::time_point askedAt_;
    bool isExpected_ = false; ///< the event loop will receive the answer
    CallbackList<QDBusConnection> observers_;
};

inline QDBusConnection systemBus() {
    return MessageBus::system().connection();
}
inline QDBusConnection sessionBus() {
    return MessageBus::session().connection();
}

} // namespace nocta
