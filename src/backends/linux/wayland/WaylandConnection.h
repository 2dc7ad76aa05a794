#pragma once

#include "base/CallbackList.h"
#include "base/Deferred.h"
#include "base/RunLoop.h"

#include <QSocketNotifier>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <wayland-client.h>

namespace nocta {

/// Nocta's own connection to the Wayland compositor, separate from Qt's. Requests are queued and
/// flushed once at the end of the run-loop turn. No call waits for the compositor longer than
/// `maxWait`, except at the start. If the connection to the compositor is lost, `onLost` is called
/// once, and later requests do nothing.
class WaylandConnection {
public:
    static constexpr std::chrono::milliseconds maxWait{200};
    /// Longer than `maxWait`, because compositors are busy when the session starts, and Nocta's
    /// features depend on what the compositor offers.
    static constexpr std::chrono::seconds maxWaitAtStart{5};

    struct Global {
        std::string interface;
        std::uint32_t version = 0;
    };

    /// Connects to the compositor that the environment names, and reads its globals.
    explicit WaylandConnection(RunLoop& runLoop);
    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;
    ~WaylandConnection();

    bool isOpen() const { return display_ != nullptr && wl_display_get_error(display_) == 0; }

    /// The globals that the compositor currently offers, by name.
    const std::map<std::uint32_t, Global>& globals() const { return globals_; }

    /// Binds a global in the given version, or in the compositor's version if that is lower.
    template <class Proxy>
    Proxy* bind(std::uint32_t name, const wl_interface& interface, std::uint32_t version) {
        return static_cast<Proxy*>(bindAny(name, interface, version));
    }

    /// The name of the first global with this interface.
    std::optional<std::uint32_t> firstGlobal(const wl_interface& interface) const;

    /// Binds the first global with this interface in version 1. Returns null if there is no such
    /// global.
    template <class Proxy>
    Proxy* bindFirst(const wl_interface& interface) {
        const auto name = firstGlobal(interface);
        return name ? bind<Proxy>(*name, interface, 1) : nullptr;
    }

    /// Calls `callback` when a global has been added or removed.
    Subscription observeGlobals(std::function<void()> callback) {
        return observers_.add(std::move(callback));
    }

    /// Call this after sending requests. They are flushed at the end of the run-loop turn.
    void finishTurn() { finishTurn_.request(); }

    /// Calls `done` when the compositor has processed all requests made so far, unless the returned
    /// subscription ends first.
    Subscription whenProcessed(std::function<void()> done);

    /// Flushes, and waits until the compositor has processed every request. Returns false on a
    /// timeout or if the connection is lost.
    bool synchronize(std::chrono::milliseconds maxTime = maxWait);

    std::function<void()> onLost;

private:
    void* bindAny(std::uint32_t name, const wl_interface& interface, std::uint32_t version);
    void readEvents();

    wl_display* display_;
    wl_registry* registry_ = nullptr;
    std::map<std::uint32_t, Global> globals_;
    CallbackList<> observers_;
    bool lossIsReported_ = false;
    std::unique_ptr<QSocketNotifier> readable_;
    Deferred finishTurn_;
};

} // namespace nocta
