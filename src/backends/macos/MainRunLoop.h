#pragma once

#include "base/RunLoop.h"

#import <Foundation/Foundation.h>
#include <ctime>
#include <map>
#include <memory>
#include <utility>

namespace nocta {

/// The main run loop in its common modes, so that timers and posted actions continue to run while a
/// menu or a modal panel is open. Qt runs the same loop, so nothing has to be forwarded to Qt. The
/// loop also serves Sparkle, the event tap and the notification centers.
class MainRunLoop final : public RunLoop {
public:
    MainRunLoop() = default;
    MainRunLoop(const MainRunLoop&) = delete;
    MainRunLoop& operator=(const MainRunLoop&) = delete;
    /// Ends the remaining timers, because the system's run loop outlives this object and would fire
    /// them.
    ~MainRunLoop() override {
        for (const auto& [id, timer] : timers_) {
            [timer invalidate];
        }
    }

    WallTime wallNow() const override { return std::chrono::system_clock::now(); }

    /// NSTimer's clock. The standard library's clock also runs while the machine sleeps.
    MonotonicTime monotonicNow() const override {
        return MonotonicTime(Duration(clock_gettime_nsec_np(CLOCK_UPTIME_RAW)));
    }

    TimerId schedule(Duration interval, Repeat repeat, std::function<void()> action) override {
        const auto id = ++lastId_;
        // The action is shared, not copied for each firing, because it may have state. The action
        // may also end its own timer.
        const auto kept = std::make_shared<std::function<void()>>(std::move(action));
        NSTimer* const timer =
            [NSTimer timerWithTimeInterval:std::chrono::duration<double>(interval).count()
                                   repeats:repeat == Repeat::yes
                                     block:^(NSTimer* /*timer*/) {
                                       if (repeat == Repeat::no) {
                                           timers_.erase(id);
                                       }
                                       @autoreleasepool {
                                           const auto current = kept;
                                           (*current)();
                                       }
                                     }];
        timers_.emplace(id, timer);
        [NSRunLoop.mainRunLoop addTimer:timer forMode:NSRunLoopCommonModes];
        return id;
    }

    void cancel(TimerId id) override {
        if (const auto found = timers_.find(id); found != timers_.end()) {
            [found->second invalidate];
            timers_.erase(found);
        }
    }

    /// May be called on any thread.
    void post(std::function<void()> action) override {
        CFRunLoopPerformBlock(CFRunLoopGetMain(), kCFRunLoopCommonModes, ^{
          @autoreleasepool {
              action();
          }
        });
        CFRunLoopWakeUp(CFRunLoopGetMain());
    }

private:
    std::map<TimerId, NSTimer*> timers_;
    TimerId lastId_ = 0;
};

} // namespace nocta
