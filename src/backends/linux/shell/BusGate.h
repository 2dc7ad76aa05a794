#pragma once

#include "base/Subscription.h"

namespace nocta {

/// Keeps Qt away from a session bus that does not answer, because Qt would block on that bus
/// whenever it creates the application object, the tray icon or a window. If the bus does not
/// answer at startup, the environment names no usable bus until the bus answers. Any services that
/// Qt looked up before that point remain unavailable until the next start. This class also keeps Qt
/// from starting a missing bus and from waiting for an input method service that does not answer.
/// Create this object before the application object; it lives as long as the application object.
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
