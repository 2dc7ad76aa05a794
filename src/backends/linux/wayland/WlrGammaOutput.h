#pragma once

#include "backends/linux/wayland/WaylandConnection.h"
#include "backends/linux/wayland/WaylandDisplays.h"
#include "backends/linux/wayland/WlrOutputPower.h"
#include "base/Timer.h"
#include "platform/GammaOutput.h"

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <vector>
#include <wlr-gamma-control-unstable-v1-client-protocol.h>

namespace nocta {

/// The gamma tables of compositors with the protocol wlr-gamma-control. The compositor restores an
/// output's own tables when the control object of the output is destroyed, and when this process
/// dies, so no helper is needed. The tables that were there before cannot be read: a calibration is
/// replaced while Nocta runs.
///
/// An output has one control object at most, and only one program can have it. If the compositor
/// refuses it, we ask a few more times, and then leave the output to the other program. At most one
/// write to an output is under way; only the newest of the tables that come meanwhile is sent then,
/// so a compositor that is busy never falls behind. Equal tables are sent too, because another
/// program may have reset the display.
class WlrGammaOutput final : public GammaOutput {
public:
    WlrGammaOutput(WaylandConnection& connection, WaylandDisplays& displays, RunLoop& runLoop);
    WlrGammaOutput(const WlrGammaOutput&) = delete;
    WlrGammaOutput& operator=(const WlrGammaOutput&) = delete;
    ~WlrGammaOutput() override;

    /// Whether the compositor has given a control object for at least one output so far.
    bool isAvailable() const override { return isAvailable_; }
    Status setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                     std::span<const float> green,
                                     std::span<const float> blue) override;
    void displayRestoreColorSyncSettings() override;

    /// Sends the last tables once more, because compositors may lose them while the machine sleeps.
    void sendAgain();

private:
    using Tables = std::array<std::vector<float>, 3>;

    /// An output's control object and what is to be done with it.
    struct Control {
        WlrGammaOutput* output;
        DisplayId display;
        zwlr_gamma_control_v1* object = nullptr;
        std::uint32_t size = 0;       ///< entries for each channel; 0 until the compositor answers
        std::optional<Tables> tables; ///< the newest
        bool isDue = false;           ///< `tables` have not been sent yet
        bool isBusy = false;          ///< the last write has not been processed yet
        int failures = 0;
        MonotonicTime grantedAt{};
        std::unique_ptr<WlrOutputPower> power{};
        Timer timer{}; ///< until the compositor has to have answered, or until the next try
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
    std::optional<std::uint32_t> managerName_; ///< of the global
    zwlr_gamma_control_manager_v1* manager_ = nullptr;
    zwlr_output_power_manager_v1* powerManager_;
    bool isAvailable_ = false;
    std::map<DisplayId, Control> controls_;
    Subscription removal_;
    Subscription globals_;
};

} // namespace nocta
