#pragma once

#include "base/RunLoop.h"
#include "base/Timer.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

namespace nocta {

/// A movement that takes a given time, as a member of its owner. The clock counts its steps: a run
/// loop that is late or rounds its timers skips steps, and the last one still comes when the time
/// is over. (`SteppedAnimation` is for a given number of steps, however long they take.) Starting
/// it replaces a movement that is running, whose completion then never runs.
class TimedAnimation {
public:
    /// Calls `show` with those of the steps 1 to `steps` that are due, in order, the last one
    /// always, and after it `completion`.
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

        /// Rounded up, so that the step is due by then.
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

    /// Its last two calls may end this object or start it anew; the run loop keeps the movement
    /// until it is through.
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
