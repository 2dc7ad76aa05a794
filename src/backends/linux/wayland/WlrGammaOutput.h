#pragma once

#include "backends/linux/gamma/GammaRamp.h"
#include "backends/linux/wayland/WaylandConnection.h"
#include "backends/linux/wayland/WaylandDisplays.h"
#include "backends/linux/wayland/WlrOutputPower.h"
#include "base/Timer.h"
#include "platform/GammaOutput.h"

#include <map>
#include <memory>
#include <optional>
#include <wlr-gamma-control-unstable-v1-client-protocol.h>

namespace nocta {

/// The gamma tables on a compositor that supports the wlr-gamma-control protocol. The compositor
/// restores an output's own tables when the control object of the output is destroyed, and when
/// this process dies, so no helper is needed. The previous tables cannot be read, so a calibration
/// is replaced while Nocta runs.
///
/// An output has at most one control object, and only one program can have this object. If the
/// compositor refuses the object, this class retries a few times, and then leaves the output to the
/// other program. Each output has at most one pending write. When that write has been processed,
/// only the newest tables are sent, so that writes do not pile up while the compositor is busy.
/// Tables are sent even if they have not changed, because another program may have reset the
/// display.
class WlrGammaOutput final : public GammaOutput {
public:
    WlrGammaOutput(WaylandConnection& connection, WaylandDisplays& displays, RunLoop& runLoop);
    WlrGammaOutput(const WlrGammaOutput&) = delete;
    WlrGammaOutput& operator=(const WlrGammaOutput&) = delete;
    ~WlrGammaOutput() override;

    /// Whether the compositor has granted a control object for at least one output so far.
    bool isAvailable() const override { return isAvailable_; }
    Status setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                     std::span<const float> green,
                                     std::span<const float> blue) override;
    void displayRestoreColorSyncSettings() override;

    /// Resends the last tables, because compositors may lose them while the machine sleeps.
    void sendAgain();

private:
    /// An output's control object and its state.
    struct Control {
        WlrGammaOutput* output = nullptr;
        DisplayId display{};
        zwlr_gamma_control_v1* object = nullptr;
        std::uint32_t size = 0; ///< entries for each channel; 0 until the compositor answers
        std::optional<TransferTables> tables; ///< the newest tables
        bool isDue = false;                   ///< `tables` have not been sent yet
        bool isBusy = false;                  ///< the last write has not been processed yet
        int failures = 0;
        MonotonicTime grantedAt{};
        std::unique_ptr<WlrOutputPower> power{};
        Timer timer{}; ///< until the answer is overdue, or until the next attempt
        Subscription processed{};
    };

    void updateManager();
    Control& controlOf(DisplayId display);
    void request(Control& control);
    void advance(Control& control);
    void send(Control& control);
    void fail(Control& control);
    void releaseAll();
    void sendAgain(Control& control);
    static void release(Control& control);

    static const zwlr_gamma_control_v1_listener listener;

    WaylandConnection& connection_;
    WaylandDisplays& displays_;
    RunLoop& runLoop_;
    std::optional<std::uint32_t> managerName_; ///< the name of the global
    zwlr_gamma_control_manager_v1* manager_ = nullptr;
    zwlr_output_power_manager_v1* powerManager_;
    bool isAvailable_ = false;
    std::map<DisplayId, Control> controls_;
    Subscription removal_;
    Subscription globals_;
};

} // namespace nocta
