#pragma once

#include <cstdint>
#include <functional>
#include <wlr-output-power-management-unstable-v1-client-protocol.h>

namespace nocta {

/// Watches the power mode of one output, because compositors may lose an output's gamma tables
/// while the output is off. This class never changes the mode.
class WlrOutputPower {
public:
    /// Calls `onTurnedOn` whenever the output is turned on after it was off.
    WlrOutputPower(zwlr_output_power_manager_v1* manager, wl_output* output,
                   std::function<void()> onTurnedOn);
    WlrOutputPower(const WlrOutputPower&) = delete;
    WlrOutputPower& operator=(const WlrOutputPower&) = delete;
    ~WlrOutputPower() { zwlr_output_power_v1_destroy(power_); }

private:
    static const zwlr_output_power_v1_listener listener;

    zwlr_output_power_v1* power_;
    std::function<void()> onTurnedOn_;
    bool isOn_ = true;
};

} // namespace nocta
