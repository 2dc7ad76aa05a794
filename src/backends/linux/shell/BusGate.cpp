#include "backends/linux/shell/BusGate.h"

#include "backends/linux/MessageBus.h"

#include <cstdlib>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr auto maxWait = 200ms; // a good bus needs less than one

constexpr auto variable = "DBUS_SESSION_BUS_ADDRESS";
constexpr auto noBus = "unix:path=/dev/null"; // refuses at once

void setAddress(const std::string& address) {
    setenv(variable, address.c_str(), 1);
}

} // namespace

BusGate::BusGate() {
    auto& bus = MessageBus::session();
    bus.keepAddress();
    MessageBus::system().waitFor(0ms); // is asked meanwhile
    setAddress(bus.waitFor(maxWait) == BusProbe::State::answered ? bus.address() : noBus);
}

void BusGate::start() {
    sessionBus_ = MessageBus::session().whenConnected(
        [](const QDBusConnection& /*bus*/) { setAddress(MessageBus::session().address()); });
}

} // namespace nocta
