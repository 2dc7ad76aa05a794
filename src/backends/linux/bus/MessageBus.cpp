#include "backends/linux/bus/MessageBus.h"

#include "backends/linux/bus/ConnectLimit.h"

#include <algorithm>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr auto minWait = 20ms;          // for an answer that arrived while the program was busy
constexpr auto usualAnswerTime = 150ms; // on a busy machine; an idle one needs less than 1 ms

} // namespace

MessageBus& MessageBus::session() {
    static auto& bus = *new MessageBus(QStringLiteral("nocta-session"), sessionBusAddress);
    return bus;
}

MessageBus& MessageBus::system() {
    static auto& bus = *new MessageBus(QStringLiteral("nocta-system"), systemBusAddress);
    return bus;
}

MessageBus::MessageBus(QString name, std::string (*environmentAddress)())
    : name_(std::move(name)), environmentAddress_(environmentAddress) {}

BusProbe::State MessageBus::waitFor(std::chrono::milliseconds time) {
    if (probe_ == nullptr) {
        probe_ = std::make_unique<BusProbe>(address());
        askedAt_ = std::chrono::steady_clock::now();
    }
    return probe_->waitFor(time);
}

QDBusConnection MessageBus::connection() {
    if (QDBusConnection known(name_); known.isConnected()) {
        return known;
    }
    QDBusConnection::disconnectFromBus(name_);
    if (!isExpected_) {
        waitFor(0ms); // starts the probe, unless one is running already
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            askedAt_ + usualAnswerTime - std::chrono::steady_clock::now());
        isExpected_ = waitFor(std::max(left, minWait)) == BusProbe::State::pending;
        if (isExpected_) {
            probe_->whenDone([this] {
                isExpected_ = false;
                settle();
            });
        } else {
            settle();
        }
    }
    return QDBusConnection(name_);
}

Subscription MessageBus::whenConnected(std::function<void(const QDBusConnection&)> callback) {
    if (const auto bus = connection(); bus.isConnected()) {
        callback(bus);
    }
    return observers_.add(std::move(callback));
}

/// Connects to a bus that has just answered. After a failure, the next call starts a new probe.
void MessageBus::settle() {
    const auto probe = std::exchange(probe_, nullptr);
    if (probe->state() != BusProbe::State::answered) {
        return;
    }
    const auto bus = [&] {
        const ConnectLimit limit;
        return QDBusConnection::connectToBus(QString::fromStdString(probe->address()), name_);
    }();
    if (bus.isConnected()) {
        observers_.call(bus);
    }
}

} // namespace nocta
