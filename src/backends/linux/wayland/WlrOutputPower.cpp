#include "backends/linux/wayland/WlrOutputPower.h"

#include <utility>

namespace nocta {

const zwlr_output_power_v1_listener WlrOutputPower::listener = {
    .mode =
        [](void* data, zwlr_output_power_v1* /*object*/, std::uint32_t mode) {
            auto& power = *static_cast<WlrOutputPower*>(data);
            const auto isOn = mode == ZWLR_OUTPUT_POWER_V1_MODE_ON;
            if (!std::exchange(power.isOn_, isOn) && isOn) {
                power.onTurnedOn_();
            }
        },
    .failed = [](void* /*data*/, zwlr_output_power_v1* /*object*/) {}}; // no more events follow

WlrOutputPower::WlrOutputPower(zwlr_output_power_manager_v1* manager, wl_output* output,
                               std::function<void()> onTurnedOn)
    : power_(zwlr_output_power_manager_v1_get_output_power(manager, output)),
      onTurnedOn_(std::move(onTurnedOn)) {
    zwlr_output_power_v1_add_listener(power_, &listener, this);
}

} // namespace nocta
