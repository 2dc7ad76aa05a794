#pragma once

#include "base/RunLoop.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>

namespace nocta {

/// A run loop whose time stands still until a test advances it, so that a simulated day takes
/// milliseconds and is the same every time. Timers fire in order of deadline; timers with equal
/// deadlines fire in order of scheduling. Both clocks start at instants other than zero, to expose
/// code that takes zero for "unset".
class VirtualRunLoop final : public RunLoop {
public:
    WallTime wallNow() const override { return wall_; }
    MonotonicTime monotonicNow() const override { return monotonic_; }
    TimerId schedule(Duration interval, Repeat repeat, std::function<void()> action) override;
    void cancel(TimerId timer) override;
    void post(std::function<void()> action) override;

    /// Moves both clocks from deadline to deadline and runs what becomes due. With zero, it runs
    /// what has been posted and what is due now.
    void advance(Duration duration);

    /// The machine sleeps: the wall clock continues, and the timers stop.
    void suspend(Duration duration) { wall_ += duration; }

    /// The user or the network sets the wall clock.
    void setWallClock(WallTime now) { wall_ = now; }

    /// Ends the loop like the end of a process: everything pending is dropped, and nothing fires
    /// until it is started again.
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
    std::map<TimerId, ScheduledTimer> timers_; // in order of scheduling
    std::deque<std::function<void()>> posted_;
    bool stopped_ = false;
};

} // namespace nocta
