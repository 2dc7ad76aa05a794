#pragma once

#include "support/FakeDisplayConfig.h"

#include <cstdint>
#include <functional>
#include <gio/gio.h>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace nocta {

/// Simulates the calibration sessions of GNOME's compositor on the session bus. The sessions change
/// the ramp of a `FakeDisplayConfig`. Calls are answered on a thread of the D-Bus library, as if by
/// another process. Tests can simulate faults.
class FakeColorManager {
public:
    FakeColorManager(const std::string& busAddress, FakeDisplayConfig& displays);
    FakeColorManager(const FakeColorManager&) = delete;
    FakeColorManager& operator=(const FakeColorManager&) = delete;
    ~FakeColorManager();

    struct State {
        /// The ramp that is loaded when a session starts or stops, unless this ramp is empty.
        GammaRamp profile;
        std::uint32_t size = 16;                     ///< the size of the ramps that sessions accept
        std::map<std::string, std::string> sessions; ///< connectors by path
        std::map<std::string, std::string> errors;   ///< error names by method
        std::map<std::string, std::string> replies;  ///< replies to send instead, by method
        std::set<std::string> mute;                  ///< methods that are never answered
        std::vector<std::string> started;            ///< connectors, one for each request
        std::map<std::string, int> calls;            ///< the number of calls of each method
    };

    /// Reads or changes the state.
    void with(const std::function<void(State&)>& action) {
        const std::scoped_lock lock(mutex_);
        action(state_);
    }
    State state() {
        const std::scoped_lock lock(mutex_);
        return state_;
    }
    int calls(const std::string& method) { return state().calls[method]; }

    /// Delays all answers until `resume`.
    void pause() { mutex_.lock(); }
    void resume() { mutex_.unlock(); }

private:
    GDBusMessage* answer(GDBusMessage* call);
    GVariant* perform(const std::string& method, const std::string& path, GVariant* arguments);
    void load(const GammaRamp& ramp);

    FakeDisplayConfig& displays_;
    std::mutex mutex_;
    State state_;
    int lastSession_ = 0;
    GDBusConnection* connection_ = nullptr;
};

} // namespace nocta
