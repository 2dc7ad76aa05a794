#pragma once

#include "base/RunLoop.h"
#include "base/Timer.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

namespace nocta {

/// An animation with a given duration. The clock determines which step is due: if the run loop is
/// late or rounds its timers, the animation skips steps and still ends on time. (Use
/// `SteppedAnimation` for a given number of steps, no matter how long they take.) Make it a member
/// of its owner; destroying it stops the animation. `start` replaces a running animation, whose
/// completion is then never called.
class TimedAnimation {
public:
    /// Calls `show` with the steps from 1 to `steps` as they become due. It may skip steps, but not
    /// the last one. Then it calls `completion`.
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

        /// Rounded up, so that `stepNow` has reached the step at that time.
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

    /// The callbacks are called last because they may destroy or restart this object. The run loop
    /// keeps the movement alive until this function returns.
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
