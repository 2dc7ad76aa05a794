#pragma once

#include "backends/linux/bus/BusProbe.h"
#include "base/Subscription.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace nocta {

/// Keeps the toolkit away from the bus of the screen readers until everybody has answered whom it
/// will wait for when it makes its first window: who knows whether there is a screen reader, the
/// bus itself, and the registry on it. Then it is made to look at once. A window that is shown
/// before they have answered leaves the program without screen readers until the next start. To be
/// made before the application object; lives as long as it.
class AccessibilityGate {
public:
    AccessibilityGate();
    AccessibilityGate(const AccessibilityGate&) = delete;
    AccessibilityGate& operator=(const AccessibilityGate&) = delete;
    ~AccessibilityGate() = default;

    /// To be called when there is the application object. `serverBus` is the bus that the display
    /// server names, or empty.
    void start(const std::string& serverBus);

private:
    using Next = std::function<void(const BusProbe&)>;

    void ask(const std::string& address, BusQuestion question, Next next);
    void askStatus(const std::string& property, std::function<void()> ifNot);
    void askForBus();
    void askRegistry(const std::string& bus, std::function<void()> next);
    void askServerBus();
    void open();

    std::optional<std::string> userBus_; ///< as the environment had it
    std::string serverBus_;
    bool isOpen_ = false;
    std::chrono::steady_clock::time_point waitsUntil_;
    std::unique_ptr<BusProbe> probe_;
    Subscription sessionBus_;
};

} // namespace nocta
