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
/// A subscription never delivers the value current when it is made. Every write notifies, one of
/// an equal value too; the value is stored before it is delivered. A write made by a subscriber is
/// delivered in full first, and the outer delivery then ends, as every subscriber already has the
/// newer value. A delivery also ends when a subscriber destroys the publisher.
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
