#include "backends/linux/shell/QtRunLoop.h"

#include <chrono>
#include <utility>

namespace nocta {

WallTime QtRunLoop::wallNow() const {
    return std::chrono::system_clock::now();
}

MonotonicTime QtRunLoop::monotonicNow() const {
    return std::chrono::steady_clock::now();
}

RunLoop::TimerId QtRunLoop::schedule(Duration interval, Repeat repeat,
                                     std::function<void()> action) {
    const auto id = ++lastId_;
    auto* const timer = new QTimer(&context_);
    timers_.emplace(id, timer);
    timer->setTimerType(Qt::PreciseTimer);
    timer->setSingleShot(repeat == Repeat::no);
    timer->setInterval(std::chrono::ceil<std::chrono::milliseconds>(interval));
    QObject::connect(timer, &QTimer::timeout, &context_,
                     [this, id, repeat, action = std::move(action)] {
                         if (repeat == Repeat::no) {
                             cancel(id);
                         }
                         action();
                     });
    timer->start();
    return id;
}

void QtRunLoop::cancel(TimerId id) {
    if (const auto found = timers_.find(id); found != timers_.end()) {
        auto* const timer = found->second;
        timers_.erase(found);
        timer->stop();
        timer->deleteLater(); // not now: the timer's own action may be canceling it
    }
}

void QtRunLoop::post(std::function<void()> action) {
    QMetaObject::invokeMethod(&context_, std::move(action), Qt::QueuedConnection);
}

} // namespace nocta
