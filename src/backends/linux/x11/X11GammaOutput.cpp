#include "backends/linux/x11/X11GammaOutput.h"

#include "backends/linux/x11/OtherGammaPrograms.h"

#include <xcb/randr.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <utility>

namespace nocta {

namespace {

/// Drivers may store a level in as few as 8 bits.
constexpr int maxRounding = 256;

bool isSame(const GammaRamp& a, const GammaRamp& b) {
    const auto isClose = [](std::uint16_t one, std::uint16_t other) {
        return std::abs(one - other) <= maxRounding;
    };
    return std::ranges::equal(a.red, b.red, isClose) &&
           std::ranges::equal(a.green, b.green, isClose) &&
           std::ranges::equal(a.blue, b.blue, isClose);
}

/// Returns nothing if the CRTC is gone.
std::optional<GammaRamp> readRamp(xcb_connection_t* connection, xcb_randr_crtc_t crtc) {
    const XcbReply<xcb_randr_get_crtc_gamma_reply_t> reply(xcb_randr_get_crtc_gamma_reply(
        connection, xcb_randr_get_crtc_gamma(connection, crtc), nullptr));
    if (!reply) {
        return std::nullopt;
    }
    const auto* const red = xcb_randr_get_crtc_gamma_red(reply.get());
    const auto* const green = xcb_randr_get_crtc_gamma_green(reply.get());
    const auto* const blue = xcb_randr_get_crtc_gamma_blue(reply.get());
    return GammaRamp{.red = {red, red + reply->size},
                     .green = {green, green + reply->size},
                     .blue = {blue, blue + reply->size}};
}

} // namespace

X11GammaOutput::X11GammaOutput(X11Connection& connection, X11Displays& displays, Guardian& guardian)
    : connection_(connection), displays_(displays), guardian_(guardian),
      permission_(guardian.observe([this](Guardian::Permission permission) { take(permission); })),
      events_(
          connection.observeEvents([this](const X11Connection::Event& event) { watch(event); })) {}

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
        return write(display, copyOf(red, green, blue));
    case Guardian::Permission::pending:
        waiting_.insert_or_assign(display, copyOf(red, green, blue));
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
    guardian_.restore(this, [this] {
        for (const auto& [id, crtc] : crtcs_) {
            find(id); // a display may have been recalibrated since the last write to it
        }
        restore(connection_.get(), connection_.root(), factoryRamps());
    });
    crtcs_.clear();
}

/// Writes the tables that were waiting for the permission, or discards the state of the displays if
/// another Nocta controls them.
void X11GammaOutput::take(Guardian::Permission permission) {
    const auto waiting = std::exchange(waiting_, {});
    if (permission == Guardian::Permission::refused) {
        isArmed_ = false;
        crtcs_.clear();
        return;
    }
    for (const auto& [display, tables] : waiting) {
        write(display, tables);
    }
}

Status X11GammaOutput::write(DisplayId display, const TransferTables& tables) {
    arm();
    const auto id = displays_.crtcOf(display);
    auto* const crtc = id == XCB_NONE ? nullptr : find(id);
    if (crtc == nullptr || crtc->factory.size() == 0) {
        return statusFailure;
    }
    crtc->written = laidOver(tables, crtc->factory, crtc->isCalibration);
    crtc->display = display;
    send(id, crtc->written);
    return statusSuccess;
}

void X11GammaOutput::sendAgain() {
    for (const auto& [id, crtc] : crtcs_) {
        if (crtc.written.size() > 0 && !mayBeCalibratedAnew(id, crtc)) {
            send(id, crtc.written);
        }
    }
}

void X11GammaOutput::send(xcb_randr_crtc_t id, const GammaRamp& ramp) {
    xcb_randr_set_crtc_gamma(connection_.get(), id, static_cast<std::uint16_t>(ramp.size()),
                             ramp.red.data(), ramp.green.data(), ramp.blue.data());
    connection_.finishTurn();
}

/// Before the first write, loads the factory ramps that an earlier Nocta left if it died together
/// with its guardian.
void X11GammaOutput::arm() {
    if (std::exchange(isArmed_, true)) {
        return;
    }
    for (auto& [id, ramp] : readFactoryRamps(connection_.get(), connection_.root())) {
        crtcs_[id].setFactory(std::move(ramp));
    }
    storeFactoryRamps(connection_.get(), connection_.root(), factoryRamps()); // removes others
    const auto* const display = std::getenv("DISPLAY");
    for (const auto& name : otherGammaPrograms(display == nullptr ? "" : display)) {
        std::cerr << "nocta: " << name
                  << " also sets the gamma of this display; quit one of the two" << std::endl;
    }
}

/// Returns the CRTC with its current factory ramp, or null if the ramp cannot be read.
X11GammaOutput::Crtc* X11GammaOutput::find(xcb_randr_crtc_t id) {
    const auto known = crtcs_.find(id);
    if (known != crtcs_.end() && !mayBeCalibratedAnew(id, known->second)) {
        return &known->second;
    }
    auto ramp = readRamp(connection_.get(), id);
    connection_.finishTurn();
    if (!ramp) {
        return nullptr;
    }
    auto& crtc = crtcs_[id];
    crtc.wasOff = false;
    if (crtc.written.size() == 0 || !isSame(*ramp, crtc.written)) {
        crtc.setFactory(std::move(*ramp));
        storeFactoryRamps(connection_.get(), connection_.root(), factoryRamps());
    }
    return &crtc;
}

bool X11GammaOutput::mayBeCalibratedAnew(xcb_randr_crtc_t id, const Crtc& crtc) const {
    return crtc.written.size() > 0 && (crtc.wasOff || displays_.crtcOf(crtc.display) != id);
}

FactoryRamps X11GammaOutput::factoryRamps() const {
    FactoryRamps ramps;
    for (const auto& [id, crtc] : crtcs_) {
        if (crtc.factory.size() > 0) {
            ramps.emplace(id, crtc.factory);
        }
    }
    return ramps;
}

/// Remembers CRTCs that were switched off.
void X11GammaOutput::watch(const X11Connection::Event& event) {
    const auto* const randr = xcb_get_extension_data(connection_.get(), &xcb_randr_id);
    if (randr == nullptr || (event.response_type & 0x7f) != randr->first_event + XCB_RANDR_NOTIFY) {
        return;
    }
    const auto& change = reinterpret_cast<const xcb_randr_notify_event_t&>(event);
    const auto& crtc = change.u.cc;
    if (change.subCode != XCB_RANDR_NOTIFY_CRTC_CHANGE || crtc.mode != XCB_NONE) {
        return;
    }
    if (const auto known = crtcs_.find(crtc.crtc); known != crtcs_.end()) {
        known->second.wasOff = true;
    }
}

} // namespace nocta
