#pragma once

#include "base/RunLoop.h"
#include "base/Timer.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

namespace nocta {

/// An animation with a given duration. The clock decides which step is due: if the run loop is late
/// or rounds its timers, steps are skipped, and the last one still comes on time. (Use
/// `SteppedAnimation` for a given number of steps, however long they take.) It is a member of its
/// owner; destroying it stops the animation. `start` replaces a running animation, whose completion
/// is then never called.
class TimedAnimation {
public:
    /// Calls `show` in order with those of the steps 1 to `steps` that are due, always including
    /// the last, and then calls `completion`.
    void start(RunLoop& runLoop, int steps, Duration duration, std::function<void(int)> show,
               std::function<void()> completion) {
        await(1, std::make_shared<const Movement>(Movement{runLoop, runLoop.monotonicNow(), steps,
                                                           duration, std::move(show),
                                                           std::move(completion)}));
    }

private:
    struct Movement {
        RunLoop& runLoop;
        MonotonicTime start;
        int steps;
        Duration duration;
        std::function<void(int)> show;
        std::function<void()> completion;

        /// Rounded up, so that the step is due at that time.
        MonotonicTime due(int step) const {
            return start + (duration * step + Duration(steps - 1)) / steps;
        }
        int stepNow() const {
            const auto elapsed = std::min(runLoop.monotonicNow() - start, duration);
            return static_cast<int>(elapsed * steps / duration);
        }
    };

    void await(int step, const std::shared_ptr<const Movement>& movement) {
        const auto wait = movement->due(step) - movement->runLoop.monotonicNow();
        timer_.start(movement->runLoop, std::max(wait, Duration(1)), Repeat::no,
                     [this, movement] { advance(movement); });
    }

    /// The callbacks at its end may destroy or restart this object. The run loop keeps the movement
    /// alive until this returns.
    void advance(const std::shared_ptr<const Movement>& movement) {
        const auto step = movement->stepNow();
        if (step < movement->steps) {
            await(step + 1, movement);
        }
        movement->show(step);
        if (step == movement->steps && movement->completion) {
            movement->completion();
        }
    }

    Timer timer_;
};

} // namespace nocta
