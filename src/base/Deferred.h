#pragma once

#include "base/RunLoop.h"

#include <functional>
#include <memory>
#include <utility>

namespace nocta {

/// Runs an action once at the end of the run-loop turn, no matter how often it was requested during
/// the turn. Make it a member of its owner; destroying it drops a pending action.
///
///     Deferred flush{runLoop, [this] { send(); }};
///     flush.request();
///     flush.request(); // `send` still runs only once
class Deferred {
public:
    Deferred(RunLoop& runLoop, std::function<void()> action)
        : runLoop_(runLoop), pending_(std::make_shared<Pending>(Pending{std::move(action)})) {}

    void request() {
        if (std::exchange(pending_->isRequested, true)) {
            return;
        }
        runLoop_.post([pending = std::weak_ptr(pending_)] {
            if (auto const alive = pending.lock()) {
                alive->isRequested = false;
                alive->action();
            }
        });
    }

private:
    struct Pending {
        std::function<void()> action;
        bool isRequested = false;
    };

    RunLoop& runLoop_;
    std::shared_ptr<Pending> pending_;
};

} // namespace nocta
