#pragma once

#include <functional>
#include <utility>
#include <vector>

namespace nocta {

/// Keeps a callback registered for as long as the subscription exists. A subscription may outlive
/// the object that its callback is registered with. Classes keep their subscriptions in a member
/// named `cancellables_`, declared last, so that no callback can run on an object that is being
/// destroyed.
///
///     cancellables_.push_back(level.subscribe([this](int value) { show(value); }));
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::function<void()> cancel) : cancel_(std::move(cancel)) {}
    Subscription(Subscription&& other) noexcept : cancel_(std::exchange(other.cancel_, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            cancel();
            cancel_ = std::exchange(other.cancel_, nullptr);
        }
        return *this;
    }
    ~Subscription() { cancel(); }

    /// Ends the registration; further calls do nothing.
    void cancel() {
        if (const auto cancel = std::exchange(cancel_, nullptr)) {
            cancel();
        }
    }

    /// True while the callback is registered; false if the registration was refused.
    explicit operator bool() const { return static_cast<bool>(cancel_); }

private:
    std::function<void()> cancel_;
};

using Cancellables = std::vector<Subscription>;

} // namespace nocta
