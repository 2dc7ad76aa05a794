#pragma once

#include "base/Subscription.h"

namespace nocta {

/// Keeps Qt away from a session bus that does not answer, because Qt blocks on it whenever it makes
/// the application object, the tray icon or a window. If the bus is silent at the start, the
/// environment names no bus until it answers; whatever Qt has looked for before then stays missing
/// until the next start. It also keeps Qt from starting a bus if there is none, and from waiting
/// for an input method service that does not answer. Create it before the application object; it
/// lives as long as that.
class BusGate {
public:
    BusGate();
    BusGate(const BusGate&) = delete;
    BusGate& operator=(const BusGate&) = delete;
    ~BusGate() = default;

    /// Call this once the application object exists.
    void start();

private:
    Subscription sessionBus_;
};

} // namespace nocta
