#pragma once

#include "backends/linux/bus/BusProbe.h"
#include "base/Subscription.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace nocta {

/// When Qt shows its first window, it blocks on three services: the service that reports whether a
/// screen reader is running, the accessibility bus itself, and the registry on that bus. This class
/// keeps Qt away from the accessibility bus until all three have answered, and then makes Qt
/// connect immediately. If a window is shown before these services have answered, the program has
/// no screen reader support until its next start. Create this object before the application object;
/// it lives as long as the application object.
class AccessibilityGate {
public:
    AccessibilityGate();
    AccessibilityGate(const AccessibilityGate&) = delete;
    AccessibilityGate& operator=(const AccessibilityGate&) = delete;
    ~AccessibilityGate() = default;

    /// Call this once the application object exists. `serverBus` is the address that the display
    /// server publishes, or empty.
    void start(const std::string& serverBus);

private:
    using Next = std::function<void(const BusProbe&)>;

    void ask(const std::string& address, BusQuestion question, Next next);
    void askStatus(const std::string& property, std::function<void()> ifNot);
    void askForBus();
    void askRegistry(const std::string& bus, std::function<void()> next);
    void askServerBus();
    void open();

    std::optional<std::string> userBus_; ///< from the environment
    std::string serverBus_;
    bool isOpen_ = false;
    std::chrono::steady_clock::time_point waitsUntil_;
    std::unique_ptr<BusProbe> probe_;
    Subscription sessionBus_;
};

} // namespace nocta
