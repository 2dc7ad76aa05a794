#include "backends/linux/shell/BusGate.h"

#include "backends/linux/bus/ConnectLimit.h"
#include "backends/linux/bus/MessageBus.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <string_view>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr auto maxWait = 200ms; // a responsive bus needs less than 1 ms

constexpr auto variable = "DBUS_SESSION_BUS_ADDRESS";
constexpr auto noBus = "unix:path=/dev/null"; // connections are refused immediately

constexpr auto inputMethodVariable = "QT_IM_MODULE";
constexpr auto inputMethodsVariable = "QT_IM_MODULES"; // takes precedence in newer versions of Qt
constexpr auto maxInputMethodWait = 100ms;
constexpr auto fallbackInputMethod = "compose"; // handles dead keys only, and needs no service

void setAddress(const std::string& address) {
    setenv(variable, address.c_str(), 1);
}

/// Whether Qt may use the portal of IBus, as it does inside a sandbox or when configured by the
/// user.
bool usesInputMethodPortal() {
    return std::ranges::any_of(
        std::array{inputMethodVariable, inputMethodsVariable}, [](const char* name) {
            const auto* const value = std::getenv(name);
            return value != nullptr &&
                   std::string_view(value).find("ibus") != std::string_view::npos;
        });
}

bool isInputMethodPortalMute(const std::string& bus) {
    BusProbe portal(bus, {.service = "org.freedesktop.portal.IBus",
                          .path = "/org/freedesktop/IBus",
                          .interface = "org.freedesktop.DBus.Introspectable",
                          .method = "Introspect"});
    return portal.waitFor(maxInputMethodWait) == BusProbe::State::pending;
}

/// Opens the connection that Qt itself uses. `ConnectLimit` is safe here: before the application
/// object exists, nothing else opens a socket.
bool connectQt() {
    const ConnectLimit limit;
    return QDBusConnection::sessionBus().isConnected();
}

} // namespace

BusGate::BusGate() {
    auto& bus = MessageBus::session();
    bus.keepAddress();
    MessageBus::system().waitFor(0ms); // starts its probe at the same time
    setAddress(bus.address());
    if (bus.waitFor(maxWait) != BusProbe::State::answered || !connectQt()) {
        setAddress(noBus);
        return;
    }
    if (usesInputMethodPortal() && isInputMethodPortalMute(bus.address())) {
        setenv(inputMethodVariable, fallbackInputMethod, 1);
        unsetenv(inputMethodsVariable);
    }
}

void BusGate::start() {
    sessionBus_ = MessageBus::session().whenConnected(
        [](const QDBusConnection& /*bus*/) { setAddress(MessageBus::session().address()); });
}

} // namespace nocta
