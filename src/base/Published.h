#pragma once

#include "base/CallbackList.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

namespace nocta {

/// A value with subscribers.
///
///     Published<int> level(3);
///     auto subscription = level.subscribe([](int value) { show(value); });
///     level.set(4); // shows 4
///
/// Subscribing does not deliver the current value. Every write notifies the subscribers, even if
/// the value is equal; the value is stored before it is delivered. If a subscriber writes, the new
/// value is delivered to all subscribers, and then the outer delivery ends, because every
/// subscriber already has the newer value. A delivery also ends when a subscriber destroys the
/// publisher. There is no locking: use it only on the run loop's thread.
template <class T>
class Published {
public:
    explicit Published(T value = T()) : state_(std::make_shared<State>(std::move(value))) {}
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;

    const T& get() const { return state_->value; }

    void set(T value) {
        state_->value = std::move(value);
        const auto delivered = state_->value;
        const auto write = ++state_->writes;
        const auto isNewest = [state = std::weak_ptr(state_), write] {
            auto const alive = state.lock();
            return alive && alive->writes == write;
        };
        state_->subscribers.callWhile(isNewest, delivered);
    }

    Subscription subscribe(std::function<void(const T&)> callback) {
        return state_->subscribers.add(std::move(callback));
    }

private:
    struct State {
        explicit State(T initial) : value(std::move(initial)) {}
        T value;
        std::uint64_t writes = 0;
        CallbackList<T> subscribers;
    };

    std::shared_ptr<State> state_;
};

} // namespace nocta
