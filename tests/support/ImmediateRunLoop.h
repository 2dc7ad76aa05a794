#pragma once

#include "base/RunLoop.h"

#include <stdexcept>

namespace nocta {

/// A run loop that runs posted actions immediately. It has no timers.
class ImmediateRunLoop final : public RunLoop {
public:
    WallTime wallNow() const override { return {}; }
    MonotonicTime monotonicNow() const override { return {}; }
    TimerId schedule(Duration /*interval*/, Repeat /*repeat*/,
                     std::function<void()> /*action*/) override {
        throw std::logic_error("this run loop has no timers");
    }
    void cancel(TimerId /*timer*/) override {}
    void post(std::function<void()> action) override { action(); }
};

} // namespace nocta
