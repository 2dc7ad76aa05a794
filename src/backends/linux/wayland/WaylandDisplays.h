#pragma once

#include "backends/linux/SessionDisplays.h"
#include "backends/linux/wayland/WaylandConnection.h"

#include <map>
#include <memory>
#include <string>
#include <vector>
#include <xdg-output-unstable-v1-client-protocol.h>

namespace nocta {

/// The outputs of a Wayland compositor. A connector keeps its ID while the program runs, so that a
/// display that is reconnected has the same ID as before. A connector of type eDP, LVDS or DSI is
/// built in. The main display is the built-in one, or else the one at the origin, because Wayland
/// has no primary output.
class WaylandDisplays final : public SessionDisplays {
public:
    WaylandDisplays(WaylandConnection& connection, RunLoop& runLoop,
                    NotificationCenter& notificationCenter);
    WaylandDisplays(const WaylandDisplays&) = delete;
    WaylandDisplays& operator=(const WaylandDisplays&) = delete;
    ~WaylandDisplays() override;

    /// The output of a display; null if the display is gone.
    wl_output* outputOf(DisplayId display) const;

    /// Calls `callback` when the output of a display is gone. A display that is reconnected has a
    /// new output.
    Subscription observeRemoval(std::function<void(DisplayId)> callback) {
        return removed_.add([callback = std::move(callback)](DisplayId id) { callback(id); });
    }

private:
    /// An output of the compositor, with the description that has been received so far.
    struct Output {
        WaylandDisplays* displays;
        wl_output* proxy;
        zxdg_output_v1* logical = nullptr;
        Display description{};
        bool isDescribed = false; ///< the first description is complete
    };

    void updateOutputs();
    void add(std::uint32_t name);
    void remove(Output& output);
    void publishDescribed();

    static const wl_output_listener outputListener;
    static const zxdg_output_v1_listener logicalListener;

    WaylandConnection& connection_;
    zxdg_output_manager_v1* logicalManager_;
    std::map<std::uint32_t, std::unique_ptr<Output>> outputs_; ///< by the name of the global
    CallbackList<DisplayId> removed_;
    Deferred publish_;
    Subscription globals_;
};

} // namespace nocta
