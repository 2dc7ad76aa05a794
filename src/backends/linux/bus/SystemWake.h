#pragma once

#include "backends/linux/bus/SleepSignals.h"
#include "base/CallbackList.h"

#include <functional>
#include <utility>

namespace nocta {

/// Calls its observers when the machine has woken up, according to logind on the system bus.
/// Without logind the observers are never called. This object lives as long as the desktop.
class SystemWake {
public:
    SystemWake();
    SystemWake(const SystemWake&) = delete;
    SystemWake& operator=(const SystemWake&) = delete;

    Subscription observe(std::function<void()> callback) {
        return observers_.add(std::move(callback));
    }

private:
    CallbackList<> observers_;
    SleepSignals signals_;
    Subscription bus_;
};

} // namespace nocta
