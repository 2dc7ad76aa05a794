#pragma once

#include "base/Subscription.h"

namespace nocta {

/// Keeps the toolkit away from a session bus that does not answer, as it waits for that whenever it
/// makes the application object, the tray icon or a window. A bus that is mute at the start is kept
/// from it by the environment and given to it when it answers; what the toolkit has looked for
/// before then it misses until the next start. Nor does the toolkit start a bus where there is
/// none, or wait for an input method's service that does not answer. To be made before the
/// application object; lives as long as it.
class BusGate {
public:
    BusGate();
    BusGate(const BusGate&) = delete;
    BusGate& operator=(const BusGate&) = delete;
    ~BusGate() = default;

    /// To be called when there is the application object.
    void start();

private:
    Subscription sessionBus_;
};

} // namespace nocta
