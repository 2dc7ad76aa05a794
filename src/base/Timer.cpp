#include "base/Timer.h"

#include <utility>

namespace nocta {

void Timer::start(RunLoop& runLoop, Duration interval, Repeat repeat,
                  std::function<void()> action) {
    invalidate();
    runLoop_ = &runLoop;
    if (repeat == Repeat::no) {
        action = [this, once = std::move(action)] {
            id_.reset();
            once();
        };
    }
    id_ = runLoop.schedule(interval, repeat, std::move(action));
}

void Timer::invalidate() {
    if (const auto id = std::exchange(id_, std::nullopt)) {
        runLoop_->cancel(*id);
    }
}

} // namespace nocta
