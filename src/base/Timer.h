#pragma once

#include "base/RunLoop.h"

#include <functional>
#include <optional>

namespace nocta {

/// A timer that is a member of its owner. Destroying the timer stops it, so that it cannot call an
/// owner that no longer exists. Its own action may stop, restart or destroy it.
///
///     Timer pollTimer;
///     pollTimer.start(runLoop, 5s, Repeat::yes, [this] { check(); });
class Timer {
public:
    Timer() = default;
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    ~Timer() { invalidate(); }

    /// Restarts the timer if it is running.
    void start(RunLoop& runLoop, Duration interval, Repeat repeat, std::function<void()> action);
    void invalidate();

    /// True while a tick is pending.
    bool isValid() const { return id_.has_value(); }

private:
    RunLoop* runLoop_ = nullptr;
    std::optional<RunLoop::TimerId> id_;
};

} // namespace nocta
