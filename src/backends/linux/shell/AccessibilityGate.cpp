#include "backends/linux/shell/AccessibilityGate.h"

#include "backends/linux/bus/MessageBus.h"

#include <QAccessible>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr auto maxWait = 100ms; // responsive services need a few milliseconds

constexpr auto variable = "AT_SPI_BUS_ADDRESS";
constexpr auto alwaysOnVariable = "QT_LINUX_ACCESSIBILITY_ALWAYS_ON";
constexpr auto noBus = "unix:path=/dev/null"; // connections are refused immediately

constexpr auto service = "org.a11y.Bus";
constexpr auto path = "/org/a11y/bus";

} // namespace

AccessibilityGate::AccessibilityGate() {
    if (const auto* const address = std::getenv(variable); address != nullptr) {
        userBus_ = address;
    }
    setenv(variable, noBus, 1);
}

void AccessibilityGate::start(const std::string& serverBus) {
    serverBus_ = serverBus;
    waitsUntil_ = std::chrono::steady_clock::now() + maxWait;
    if (userBus_) {
        askRegistry(*userBus_, [this] { open(); });
        return;
    }
    auto& bus = MessageBus::session();
    sessionBus_ = bus.whenConnected([this](const QDBusConnection& /*bus*/) {
        if (!isOpen_ && probe_ == nullptr) {
            askStatus("IsEnabled",
                      [this] { askStatus("ScreenReaderEnabled", [this] { askServerBus(); }); });
        }
    });
    if (!isOpen_ && probe_ == nullptr && !bus.isMute()) {
        open(); // there is no bus, so Qt does not wait
    }
}

void AccessibilityGate::ask(const std::string& address, BusQuestion question, Next next) {
    probe_ = std::make_unique<BusProbe>(address, std::move(question));
    const auto done = [this, next = std::move(next)] {
        const auto probe = std::exchange(probe_, nullptr);
        next(*probe);
    };
    const auto time = std::chrono::ceil<std::chrono::milliseconds>(
        waitsUntil_ - std::chrono::steady_clock::now());
    if (probe_->waitFor(std::max(time, 0ms)) == BusProbe::State::pending) {
        probe_->whenDone(done);
    } else {
        done();
    }
}

void AccessibilityGate::askStatus(const std::string& property, std::function<void()> ifNot) {
    ask(MessageBus::session().address(),
        {.service = service,
         .path = path,
         .interface = "org.freedesktop.DBus.Properties",
         .method = "Get",
         .arguments = {"org.a11y.Status", property}},
        [this, ifNot = std::move(ifNot)](const BusProbe& probe) {
            const auto isOn = probe.answer() ? probe.answer()->booleanInVariant() : std::nullopt;
            if (isOn && (*isOn || std::getenv(alwaysOnVariable) != nullptr)) {
                askForBus();
            } else {
                ifNot();
            }
        });
}

void AccessibilityGate::askForBus() {
    ask(MessageBus::session().address(),
        {.service = service, .path = path, .interface = service, .method = "GetAddress"},
        [this](const BusProbe& probe) {
            const auto bus = probe.answer() ? probe.answer()->string() : std::nullopt;
            askRegistry(bus.value_or(""), [this] { askServerBus(); });
        });
}

void AccessibilityGate::askRegistry(const std::string& bus, std::function<void()> next) {
    ask(bus, {.service = "org.a11y.atspi.Registry", .path = "/org/a11y/atspi/registry"},
        [next = std::move(next)](const BusProbe& /*probe*/) { next(); });
}

/// Asks the bus that the display server names. Qt also connects to this bus, even if it already has
/// the address of another one.
void AccessibilityGate::askServerBus() {
    askRegistry(serverBus_, [this] { open(); });
}

void AccessibilityGate::open() {
    isOpen_ = true;
    if (userBus_) {
        setenv(variable, userBus_->c_str(), 1);
    } else {
        unsetenv(variable);
    }
    QAccessible::isActive(); // makes Qt connect right after the services have answered
}

} // namespace nocta
