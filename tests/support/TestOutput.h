#pragma once

#include "support/TestCompositor.h"

#include <cstdint>
#include <string>
#include <vector>
#include <wayland-server.h>
#include <wlr-gamma-control-unstable-v1-server-protocol.h>
#include <wlr-output-power-management-unstable-v1-server-protocol.h>

namespace nocta {

/// An output of a `TestCompositor`. Only the compositor's thread uses it.
struct TestOutput {
    static constexpr int width = 1280;
    static constexpr int height = 720;

    TestCompositor* compositor;
    std::string name;
    int x = 0;
    wl_global* global = nullptr;
    bool isRemoved = false;
    bool isOn = true;
    TestCompositor::Response response = TestCompositor::Response::size;
    std::uint32_t size = 256;
    wl_resource* control = nullptr; ///< belongs to the client that has or requests gamma control
    std::vector<std::vector<std::uint16_t>> gamma{};
    int gammaRequests = 0;
    std::vector<wl_resource*> powers{};

    void restore() {
        control = nullptr;
        if (!gamma.empty() && !gamma.back().empty()) {
            gamma.emplace_back();
        }
    }
    void failControl() {
        if (control != nullptr) {
            zwlr_gamma_control_v1_send_failed(control);
            restore();
        }
    }
    void tellSize() {
        if (control != nullptr) {
            zwlr_gamma_control_v1_send_gamma_size(control, size);
        }
    }
    void tellPower(wl_resource* power) const {
        zwlr_output_power_v1_send_mode(power, isOn ? ZWLR_OUTPUT_POWER_V1_MODE_ON
                                                   : ZWLR_OUTPUT_POWER_V1_MODE_OFF);
    }
};

} // namespace nocta
