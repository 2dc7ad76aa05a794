#include "base/NotificationCenter.h"

#include <utility>

namespace nocta {

Subscription NotificationCenter::observe(std::string_view name, std::function<void()> callback) {
    return observers_[std::string(name)].add(std::move(callback));
}

void NotificationCenter::post(std::string_view name) {
    if (const auto found = observers_.find(name); found != observers_.end()) {
        found->second.call();
    }
}

} // namespace nocta
