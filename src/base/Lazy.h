#pragma once

#include <functional>
#include <optional>
#include <utility>

namespace nocta {

/// An object that is created on first use.
///
///     Lazy<Cache> cache{[this](auto& object) { object.emplace(store()); }};
///     cache().clear();
///
/// Two objects must not depend on each other, because neither could be created first.
template <class T>
class Lazy {
public:
    using Make = std::function<void(std::optional<T>& made)>;

    explicit Lazy(Make make) : make_(std::move(make)) {}
    Lazy(const Lazy&) = delete;
    Lazy& operator=(const Lazy&) = delete;

    T& operator()() {
        if (!made_) {
            make_(made_);
        }
        return *made_;
    }

private:
    Make make_;
    std::optional<T> made_;
};

} // namespace nocta
