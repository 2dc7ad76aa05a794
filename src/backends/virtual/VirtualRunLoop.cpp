#include "backends/virtual/VirtualRunLoop.h"

#include <algorithm>
#include <utility>

namespace nocta {

RunLoop::TimerId VirtualRunLoop::schedule(Duration interval, Repeat repeat,
                                          std::function<void()> action) {
    const auto id = ++lastId_;
    timers_.emplace(id, ScheduledTimer{monotonic_ + interval, interval, repeat,
                                       std::make_shared<std::function<void()>>(std::move(action))});
    return id;
}

void VirtualRunLoop::cancel(TimerId timer) {
    timers_.erase(timer);
}

void VirtualRunLoop::post(std::function<void()> action) {
    posted_.push_back(std::move(action));
}

void VirtualRunLoop::advance(Duration duration) {
    const auto end = monotonic_ + duration;
    runPosted();
    while (!stopped_) {
        const auto next = std::ranges::min_element(
            timers_, {}, [](const auto& timer) { return timer.second.deadline; });
        if (next == timers_.end() || next->second.deadline > end) {
            break;
        }
        moveClocksTo(next->second.deadline);
        fire(next->first);
        runPosted();
    }
    moveClocksTo(end);
}

void VirtualRunLoop::stop() {
    stopped_ = true;
    timers_.clear();
    posted_.clear();
}

void VirtualRunLoop::runPosted() {
    while (!stopped_ && !posted_.empty()) {
        const auto action = std::move(posted_.front());
        posted_.pop_front();
        action();
    }
}

void VirtualRunLoop::moveClocksTo(MonotonicTime instant) {
    if (instant > monotonic_) {
        wall_ += instant - monotonic_;
        monotonic_ = instant;
    }
}

void VirtualRunLoop::fire(TimerId id) {
    const auto timer = timers_.find(id);
    const auto action = timer->second.action; // a copy: it may cancel its own timer
    if (timer->second.repeat == Repeat::yes) {
        timer->second.deadline += timer->second.interval;
    } else {
        timers_.erase(timer);
    }
    (*action)();
}

} // namespace nocta
