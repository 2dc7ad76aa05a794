#include "backends/linux/x11/X11GammaOutput.h"

#include <xcb/randr.h>

#include <utility>

namespace nocta {

X11GammaOutput::X11GammaOutput(X11Connection& connection, X11Displays& displays, Guardian& guardian)
    : connection_(connection), displays_(displays), guardian_(guardian),
      permission_(guardian.observe([this](Guardian::Permission permission) { take(permission); })) {
}

X11GammaOutput::~X11GammaOutput() {
    X11GammaOutput::displayRestoreColorSyncSettings();
}

Status X11GammaOutput::setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                                 std::span<const float> green,
                                                 std::span<const float> blue) {
    if (displays_.crtcOf(display) == XCB_NONE) {
        return statusFailure;
    }
    switch (guardian_.request(this)) {
    case Guardian::Permission::granted:
        return write(display, red, green, blue);
    case Guardian::Permission::pending:
        waiting_.insert_or_assign(display, Tables{{{red.begin(), red.end()},
                                                   {green.begin(), green.end()},
                                                   {blue.begin(), blue.end()}}});
        return statusSuccess;
    case Guardian::Permission::refused:
        break;
    }
    return statusFailure;
}

void X11GammaOutput::displayRestoreColorSyncSettings() {
    waiting_.clear();
    if (!std::exchange(isArmed_, false)) {
        guardian_.dismiss(this);
        return;
    }
    guardian_.restore(this,
                      [this] { giveBack(connection_.get(), connection_.root(), factoryRamps()); });
    factories_.clear();
}

/// Writes what waits for the permission, or drops all that was said of a display that is another's.
void X11GammaOutput::take(Guardian::Permission permission) {
    const auto waiting = std::exchange(waiting_, {});
    if (permission == Guardian::Permission::refused) {
        isArmed_ = false;
        factories_.clear();
        return;
    }
    for (const auto& [display, tables] : waiting) {
        write(display, tables[0], tables[1], tables[2]);
    }
}

Status X11GammaOutput::write(DisplayId display, std::span<const float> red,
                             std::span<const float> green, std::span<const float> blue) {
    arm();
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
    const auto ramp = GammaRamp{.red = channel(red, factory->ramp.red),
                                .green = channel(green, factory->ramp.green),
                                .blue = channel(blue, factory->ramp.blue)};
    xcb_randr_set_crtc_gamma(connection_.get(), crtc, static_cast<std::uint16_t>(ramp.size()),
                             ramp.red.data(), ramp.green.data(), ramp.blue.data());
    connection_.finishTurn();
    return statusSuccess;
}

/// Finds, before the first write, what a Nocta has left that died together with its guardian.
void X11GammaOutput::arm() {
    if (std::exchange(isArmed_, true)) {
        return;
    }
    for (auto& [crtc, ramp] : readFactoryRamps(connection_.get(), connection_.root())) {
        remember(crtc, std::move(ramp));
    }
    keepFactoryRamps(connection_.get(), connection_.root(), factoryRamps()); // and nothing else
}

const X11GammaOutput::Factory* X11GammaOutput::factoryOf(xcb_randr_crtc_t crtc) {
    if (const auto known = factories_.find(crtc); known != factories_.end()) {
        return &known->second;
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
    const auto* const factory = remember(crtc, std::move(ramp));
    keepFactoryRamps(x, connection_.root(), factoryRamps());
    return factory;
}

const X11GammaOutput::Factory* X11GammaOutput::remember(xcb_randr_crtc_t crtc, GammaRamp ramp) {
    const auto isCalibration = ramp.isCalibration();
    return &factories_.insert_or_assign(crtc, Factory{std::move(ramp), isCalibration})
                .first->second;
}

FactoryRamps X11GammaOutput::factoryRamps() const {
    FactoryRamps ramps;
    for (const auto& [crtc, factory] : factories_) {
        if (factory.ramp.size() > 0) {
            ramps.emplace(crtc, factory.ramp);
        }
    }
    return ramps;
}

} // namespace nocta
