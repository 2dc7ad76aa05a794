#pragma once

#include "backends/linux/bus/SleepSignals.h"
#include "base/CallbackList.h"

#include <functional>
#include <utility>

namespace nocta {

/// Tells when the machine has woken, as logind says so on the system bus. Where there is no logind
/// nothing is ever told. It lives as long as the desktop.
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
