#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace nocta {

using Duration = std::chrono::nanoseconds;

/// The wall clock. It jumps when the user or the network sets it, and continues while the machine
/// sleeps.
using WallTime = std::chrono::time_point<std::chrono::system_clock, Duration>;

/// The clock for timers. It is never set, and it stops while the machine sleeps.
using MonotonicTime = std::chrono::time_point<std::chrono::steady_clock, Duration>;

enum class Repeat { no, yes };

/// The main thread's event loop and its two clocks, which the desktop provides. Everything runs on
/// the main thread; do not call any function from another thread. No other code reads a clock.
class RunLoop {
public:
    using TimerId = std::uint64_t;

    virtual ~RunLoop() = default;

    virtual WallTime wallNow() const = 0;
    virtual MonotonicTime monotonicNow() const = 0;

    /// Calls `action` after `interval` (above zero) of monotonic time, once or repeatedly. Skips
    /// ticks that were missed while the loop was busy. An action may cancel its own timer. Use a
    /// `Timer` member instead of calling this directly.
    virtual TimerId schedule(Duration interval, Repeat repeat, std::function<void()> action) = 0;
    virtual void cancel(TimerId timer) = 0;

    /// Calls `action` once, after the current work has returned. Actions run in the order in which
    /// they were posted.
    virtual void post(std::function<void()> action) = 0;
};

} // namespace nocta
