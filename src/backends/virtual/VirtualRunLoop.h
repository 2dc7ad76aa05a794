#pragma once

#include "base/RunLoop.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>

namespace nocta {

/// A run loop whose virtual time moves only when a test advances it. A simulated day takes
/// milliseconds and is the same every time. Timers fire in the order of their deadlines; timers
/// with equal deadlines fire in the order in which they were scheduled. Neither clock starts at
/// zero, to expose code that treats zero as "unset".
class VirtualRunLoop final : public RunLoop {
public:
    WallTime wallNow() const override { return wall_; }
    MonotonicTime monotonicNow() const override { return monotonic_; }
    TimerId schedule(Duration interval, Repeat repeat, std::function<void()> action) override;
    void cancel(TimerId timer) override;
    void post(std::function<void()> action) override;

    /// Advances both clocks from deadline to deadline and runs the timers that become due. If
    /// `duration` is zero, runs the posted actions and the timers that are due now.
    void advance(Duration duration);

    /// Simulates sleep: the wall clock advances by `duration`, and the timers do not.
    void suspend(Duration duration) { wall_ += duration; }

    /// Sets the wall clock, as the user or the network does.
    void setWallClock(WallTime now) { wall_ = now; }

    /// Stops the loop as if the process had ended: drops everything that is pending, and runs
    /// nothing until `start` is called.
    void stop();
    void start() { stopped_ = false; }

private:
    struct ScheduledTimer {
        MonotonicTime deadline;
        Duration interval;
        Repeat repeat;
        std::shared_ptr<std::function<void()>> action;
    };

    void runPosted();
    void moveClocksTo(MonotonicTime instant);
    void fire(TimerId id);

    WallTime wall_{std::chrono::sys_days{std::chrono::year{2026} / 3 / 20} + std::chrono::hours{9}};
    MonotonicTime monotonic_{std::chrono::hours{1}};
    TimerId lastId_ = 0;
    std::map<TimerId, ScheduledTimer> timers_; // in the order in which they were scheduled
    std::deque<std::function<void()>> posted_;
    bool stopped_ = false;
};

} // namespace nocta
