#pragma once

#include "backends/linux/gamma/GammaRamp.h"

#include <cstdint>
#include <functional>
#include <gio/gio.h>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace nocta {

/// The display service of GNOME's compositor on the session bus, with one monitor, "DP-1", and its
/// CRTC 7. A thread of its own answers, as another process would. Tests can make it misbehave.
class FakeDisplayConfig {
public:
    explicit FakeDisplayConfig(const std::string& busAddress);
    FakeDisplayConfig(const FakeDisplayConfig&) = delete;
    FakeDisplayConfig& operator=(const FakeDisplayConfig&) = delete;
    ~FakeDisplayConfig();

    static constexpr std::uint32_t crtc = 7;

    struct State {
        GammaRamp ramp;             ///< of the CRTC
        std::uint32_t serial = 1;   ///< of the configuration
        bool isAlwaysStale = false; ///< no serial is right
        bool isNightLightActive = false;
        std::string resources = ""; ///< the reply of GetResources, if not the usual one
        std::string state = "";     ///< the same for GetCurrentState
        std::string logical = "(0, 0, 1.0, uint32 0, true, [('DP-1', '', '', '')], @a{sv} {})";
        std::string monitorProperties = "'is-builtin': <true>";
        std::string layout = "'layout-mode': <uint32 2>";
        std::map<std::string, int> calls; ///< the number of calls of each method
    };

    /// Reads or changes the state.
    void with(const std::function<void(State&)>& action) {
        const std::scoped_lock lock(mutex_);
        action(state_);
    }
    int calls(const std::string& method) {
        int count = 0;
        with([&](State& state) { count = state.calls[method]; });
        return count;
    }
    GammaRamp ramp() {
        GammaRamp ramp;
        with([&](State& state) { ramp = state.ramp; });
        return ramp;
    }

    /// Calls are answered only after `resume`.
    void pause() { mutex_.lock(); }
    void resume() { mutex_.unlock(); }

    void announceMonitors();

private:
    void serve(const std::string& busAddress);
    void answer(const std::string& method, GVariant* parameters, GDBusMethodInvocation* invocation);

    std::mutex mutex_;
    State state_;
    GMainContext* context_ = g_main_context_new();
    GMainLoop* loop_ = g_main_loop_new(context_, FALSE);
    GDBusConnection* connection_ = nullptr;
    std::thread thread_;
};

} // namespace nocta
