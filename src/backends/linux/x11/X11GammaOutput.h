#pragma once

#include "backends/linux/gamma/GammaRamp.h"
#include "backends/linux/x11/FactoryRamps.h"
#include "backends/linux/x11/Guardian.h"
#include "backends/linux/x11/X11Connection.h"
#include "backends/linux/x11/X11Displays.h"
#include "platform/GammaOutput.h"

#include <map>
#include <utility>

namespace nocta {

/// The gamma ramps of the CRTCs that drive the displays. Each CRTC's factory ramp is read before
/// the first write to the CRTC and kept on the server. The factory ramp is treated as a
/// calibration, over which tables are laid. On exit this process restores the factory ramp. If this
/// process dies, its guardian restores it. A CRTC that was off or now drives another display may
/// have been recalibrated: its ramp is read again before the next write. Until the guardian is
/// ready, only the newest tables of each display are kept. Apart from these cases, no write waits
/// for the server. Tables are written even if they have not changed, because another program may
/// have reset the display, and no event reports that.
class X11GammaOutput final : public GammaOutput {
public:
    X11GammaOutput(X11Connection& connection, X11Displays& displays, Guardian& guardian);
    X11GammaOutput(const X11GammaOutput&) = delete;
    X11GammaOutput& operator=(const X11GammaOutput&) = delete;
    ~X11GammaOutput() override;

    bool isAvailable() const override { return true; }
    Status setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                     std::span<const float> green,
                                     std::span<const float> blue) override;
    void displayRestoreColorSyncSettings() override;

    /// Resends the last ramps, because drivers may lose them while the machine sleeps. Skips
    /// displays that have been off or have moved to another CRTC since.
    void sendAgain();

private:
    struct Crtc {
        GammaRamp factory;
        bool isCalibration = false; ///< the factory ramp is a calibration
        GammaRamp written;          ///< the last ramp; empty before the first write
        DisplayId display = 0;      ///< the display that `written` was for
        bool wasOff = false;        ///< off since the last write

        void setFactory(GammaRamp ramp) {
            isCalibration = ramp.isCalibration();
            factory = std::move(ramp);
        }
    };

    void take(Guardian::Permission permission);
    Status write(DisplayId display, const TransferTables& tables);
    void arm();
    Crtc* find(xcb_randr_crtc_t id);
    void send(xcb_randr_crtc_t id, const GammaRamp& ramp);
    bool mayBeCalibratedAnew(xcb_randr_crtc_t id, const Crtc& crtc) const;
    FactoryRamps factoryRamps() const;
    void watch(const X11Connection::Event& event);

    X11Connection& connection_;
    X11Displays& displays_;
    Guardian& guardian_;
    bool isArmed_ = false;
    std::map<xcb_randr_crtc_t, Crtc> crtcs_;
    std::map<DisplayId, TransferTables> waiting_;
    Subscription permission_;
    Subscription events_;
};

} // namespace nocta
