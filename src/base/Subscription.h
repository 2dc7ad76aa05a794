#pragma once

#include <functional>
#include <utility>
#include <vector>

namespace nocta {

/// Keeps a callback registered for as long as it lives. It may outlive what it is registered
/// with. Owners keep theirs in a member named `cancellables`, declared last, so that no callback
/// can run once the owner has begun to go.
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

    /// True while the callback is registered. A registration that was refused is false.
    explicit operator bool() const { return static_cast<bool>(cancel_); }

private:
    std::function<void()> cancel_;
};

using Cancellables = std::vector<Subscription>;

} // namespace nocta
