#pragma once

#include "base/RunLoop.h"

#include <QObject>
#include <QTimer>

#include <unordered_map>

namespace nocta {

/// The Linux desktop's run loop, on Qt's event loop. Timers are precise to the millisecond.
class QtRunLoop final : public RunLoop {
public:
    WallTime wallNow() const override;
    MonotonicTime monotonicNow() const override;
    TimerId schedule(Duration interval, Repeat repeat, std::function<void()> action) override;
    void cancel(TimerId timer) override;
    void post(std::function<void()> action) override;

private:
    // Receives posted actions and the timers' signals. Declared before the timers, so that it is
    // destroyed last.
    QObject context_;
    TimerId lastId_ = 0;
    std::unordered_map<TimerId, QTimer*> timers_; // owned by context_
};

} // namespace nocta
