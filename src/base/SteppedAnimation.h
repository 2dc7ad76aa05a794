#pragma once

#include "base/RunLoop.h"
#include "base/Timer.h"

#include <functional>
#include <utility>

namespace nocta {

/// An animation with a given number of steps, no matter how long they take. Make it a member of its
/// owner; destroying it stops the animation. `start` replaces a running animation, whose completion
/// is then never called.
class SteppedAnimation {
public:
    /// Calls `show` once per interval with the step numbers 1 to `steps`, and then calls
    /// `completion`.
    void start(RunLoop& runLoop, int steps, Duration interval, std::function<void(int)> show,
               std::function<void()> completion) {
        timer_.start(runLoop, interval, Repeat::yes,
                     [this, step = 0, steps, show = std::move(show),
                      completion = std::move(completion)]() mutable {
                         ++step;
                         show(step);
                         if (step == steps) {
                             const auto finish = std::move(completion); // the timer owns it
                             timer_.invalidate();
                             if (finish) {
                                 finish();
                             }
                         }
                     });
    }

    /// Stops the animation where it is, without calling the completion.
    void invalidate() { timer_.invalidate(); }

private:
    Timer timer_;
};

} // namespace nocta
