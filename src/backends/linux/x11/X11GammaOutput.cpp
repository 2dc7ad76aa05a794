#include "backends/linux/x11/X11GammaOutput.h"

#include <xcb/randr.h>

#include <utility>

namespace nocta {

X11GammaOutput::X11GammaOutput(X11Connection& connection, X11Displays& displays)
    : connection_(connection), displays_(displays), guardian_(connection) {}

X11GammaOutput::~X11GammaOutput() {
    if (!factories_.empty()) {
        X11GammaOutput::displayRestoreColorSyncSettings();
    }
}

Status X11GammaOutput::setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                                 std::span<const float> green,
                                                 std::span<const float> blue) {
    const auto crtc = displays_.crtcOf(display);
    const auto* const factory = crtc == XCB_NONE ? nullptr : factoryOf(crtc);
    if (factory == nullptr || factory->ramp.size() == 0) {
        return statusFailure;
    }
    const auto channel = [&](std::span<const float> table,
                             const std::vector<std::uint16_t>& factoryChannel) {
        auto const calibration = std::span(factoryChannel);
        return laidOver(table, factory->isCalibration ? calibration : calibration.first(0),
                        calibration.size());
    };
    write(crtc, {.red = channel(red, factory->ramp.red),
                 .green = channel(green, factory->ramp.green),
                 .blue = channel(blue, factory->ramp.blue)});
    return statusSuccess;
}

void X11GammaOutput::displayRestoreColorSyncSettings() {
    for (const auto& [crtc, factory] : factories_) {
        if (factory.ramp.size() > 0) {
            write(crtc, factory.ramp);
        }
    }
    connection_.synchronize();
    guardian_.release();
    factories_.clear();
}

const X11GammaOutput::Factory* X11GammaOutput::factoryOf(xcb_randr_crtc_t crtc) {
    if (const auto known = factories_.find(crtc); known != factories_.end()) {
        return &known->second;
    }
    if (!guardian_.start()) {
        return nullptr;
    }
    auto* const x = connection_.get();
    const XcbReply<xcb_randr_get_crtc_gamma_reply_t> reply(
        xcb_randr_get_crtc_gamma_reply(x, xcb_randr_get_crtc_gamma(x, crtc), nullptr));
    connection_.finishTurn();
    if (!reply) {
        return nullptr; // the CRTC has gone
    }
    const auto* const red = xcb_randr_get_crtc_gamma_red(reply.get());
    const auto* const green = xcb_randr_get_crtc_gamma_green(reply.get());
    const auto* const blue = xcb_randr_get_crtc_gamma_blue(reply.get());
    GammaRamp ramp{.red = {red, red + reply->size},
                   .green = {green, green + reply->size},
                   .blue = {blue, blue + reply->size}};
    if (ramp.size() > 0) {
        guardian_.hold(crtc, ramp);
    }
    const auto isCalibration = ramp.isCalibration();
    return &factories_.emplace(crtc, Factory{std::move(ramp), isCalibration}).first->second;
}

void X11GammaOutput::write(xcb_randr_crtc_t crtc, const GammaRamp& ramp) {
    xcb_randr_set_crtc_gamma(connection_.get(), crtc, static_cast<std::uint16_t>(ramp.size()),
                             ramp.red.data(), ramp.green.data(), ramp.blue.data());
    connection_.finishTurn();
}

} // namespace nocta
