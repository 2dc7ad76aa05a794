#pragma once

#include "backends/linux/x11/XcbRequests.h"
#include "base/CallbackList.h"
#include "base/Deferred.h"
#include "base/RunLoop.h"

#include <QSocketNotifier>
#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace nocta {

/// Nocta's own connection to the X server, separate from Qt's. Requests are queued and flushed once
/// at the end of the run-loop turn; errors that the server reports later are ignored. If the
/// connection to the server is lost, `onLost` is called once, and later requests do nothing.
class X11Connection {
public:
    using Event = xcb_generic_event_t;

    /// Connects to the display that the environment names.
    explicit X11Connection(RunLoop& runLoop);
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;
    ~X11Connection();

    bool isOpen() const { return xcb_connection_has_error(connection_) == 0; }
    xcb_connection_t* get() const { return connection_; }
    xcb_window_t root() const { return screen_ == nullptr ? XCB_NONE : screen_->root; }

    /// An input-only window that exists as long as the server keeps this connection.
    xcb_window_t window() const { return window_; }

    int screenNumber() const { return screenNumber_; }

    /// Also reports these events of the root window to `observeEvents`. A client has only one event
    /// mask per window, so no other code may set the mask of the root window.
    void selectRootEvents(std::uint32_t mask);

    /// Returns XCB_ATOM_NONE if the server has no atom with that name.
    xcb_atom_t existingAtom(std::string_view name) const {
        return internAtom(connection_, name, true);
    }

    xcb_atom_t atom(std::string_view name) const { return internAtom(connection_, name); }

    /// The window of the client that owns the selection, or XCB_NONE.
    xcb_window_t ownerOf(xcb_atom_t selection);
    bool isOwned(xcb_atom_t selection) { return ownerOf(selection) != XCB_NONE; }

    /// Whether a compositor is running, so that windows can be translucent.
    bool isComposited() { return isOwned(atom("_NET_WM_CM_S" + std::to_string(screenNumber_))); }

    Subscription observeEvents(std::function<void(const Event&)> callback) {
        return observers_.add(std::move(callback));
    }

    /// Call this after sending requests without a reply and after waiting for replies. At the end
    /// of the run-loop turn it flushes, and delivers the events that arrived with the replies.
    void finishTurn() { finishTurn_.request(); }

    /// Flushes, and returns once the server has processed every request. Returns false if the
    /// server is gone.
    bool synchronize();

    /// Delivers the events for everything that has happened on the server so far.
    void catchUp();

    std::function<void()> onLost;

private:
    void readEvents();

    xcb_connection_t* connection_;
    int screenNumber_ = 0;
    xcb_screen_t* screen_ = nullptr;
    xcb_window_t window_ = XCB_NONE;
    std::uint32_t rootEvents_ = 0;
    CallbackList<Event> observers_;
    bool lossIsReported_ = false;
    std::unique_ptr<QSocketNotifier> readable_;
    Deferred finishTurn_;
};

} // namespace nocta
