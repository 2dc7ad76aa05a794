#pragma once

#include "base/RunLoop.h"
#include "base/Timer.h"

#include <functional>
#include <utility>

namespace nocta {

/// A movement in equal steps, as a member of its owner. Starting it replaces a movement that is
/// running, whose completion then never runs.
class SteppedAnimation {
public:
    /// Calls `show` with 1 to `steps`, one each interval, and after the last one `completion`.
    void start(RunLoop& runLoop, int steps, Duration interval, std::function<void(int)> show,
               std::function<void()> completion) {
        timer_.start(runLoop, interval, Repeat::yes,
                     [this, step = 0, steps, show = std::move(show),
                      completion = std::move(completion)]() mutable {
                         ++step;
                         show(step);
                         if (step == steps) {
                             const auto finish = std::move(completion); // goes with the timer
                             timer_.invalidate();
                             if (finish) {
                                 finish();
                             }
                         }
                     });
    }

    /// Ends the movement where it is, without its completion.
    void invalidate() { timer_.invalidate(); }

private:
    Timer timer_;
};

} // namespace nocta
