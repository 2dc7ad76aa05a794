#pragma once

#include "base/TimedAnimation.h"
#include "base/TimingFunction.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <utility>

namespace nocta {

/// Fades a window at 60 frames per second. Make it a member of its owner; destroying it stops the
/// fade. `start` replaces a running fade, whose completion is then never called.
class AlphaFade {
public:
    struct Way {
        double from = 0;
        double to = 0;
    };

    /// Calls `show` with each alpha when it is due, ending with exactly `way.to`, and then calls
    /// `completion`.
    void start(RunLoop& runLoop, Way way, Duration duration, TimingFunction curve,
               std::function<void(double)> show, std::function<void()> completion) {
        using Picture = std::chrono::duration<double, std::ratio<1, 60>>;
        const auto steps = std::max(1, static_cast<int>(std::lround(Picture(duration).count())));
        animation_.start(
            runLoop, steps, duration,
            [way, steps, curve, show = std::move(show)](int step) {
                const auto part = eased(curve, static_cast<double>(step) / steps);
                show(step == steps ? way.to : std::lerp(way.from, way.to, part));
            },
            std::move(completion));
    }

private:
    TimedAnimation animation_;
};

} // namespace nocta
