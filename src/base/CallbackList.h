#pragma once

#include "base/Subscription.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace nocta {

/// An ordered list of callbacks. Callbacks may be added and removed while the list is being called:
/// a removed callback is no longer called, and an added one is first called the next time.
template <class... Args>
class CallbackList {
public:
    using Callback = std::function<void(const Args&...)>;

    Subscription add(Callback callback) {
        auto entry = std::make_shared<Entry>(Entry{std::move(callback), true});
        entries_->push_back(entry);
        return Subscription([entries = std::weak_ptr(entries_), entry] {
            entry->active = false;
            if (auto const list = entries.lock()) {
                std::erase(*list, entry);
            }
        });
    }

    void call(const Args&... args) const {
        callWhile([] { return true; }, args...);
    }

    /// Calls `keepGoing` before each callback and stops when it returns false. A callback may
    /// destroy the list itself if `keepGoing` can still be called afterward.
    template <class Predicate>
    void callWhile(Predicate keepGoing, const Args&... args) const {
        const auto entries = *entries_;
        for (const auto& entry : entries) {
            if (!keepGoing()) {
                return;
            }
            if (entry->active) {
                entry->callback(args...);
            }
        }
    }

private:
    struct Entry {
        Callback callback;
        bool active;
    };

    std::shared_ptr<std::vector<std::shared_ptr<Entry>>> entries_ =
        std::make_shared<std::vector<std::shared_ptr<Entry>>>();
};

} // namespace nocta
