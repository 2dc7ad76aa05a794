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

/// Nocta's own connection to the X server, apart from the toolkit's. Requests are gathered and
/// flushed once at the end of the run-loop turn; errors that the server reports later are absorbed.
/// A server that goes away is told once to `onLost`; from then on every request does nothing.
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

    /// An input-only window that lives exactly as long as the server serves this connection.
    xcb_window_t window() const { return window_; }

    int screenNumber() const { return screenNumber_; }

    /// Lets `observeEvents` hear of these events of the root window as well. A client has one event
    /// mask on a window, so nobody else may set that of the root.
    void selectRootEvents(std::uint32_t mask);

    /// None where the server has no atom of that name.
    xcb_atom_t existingAtom(std::string_view name) const {
        return internAtom(connection_, name, true);
    }

    xcb_atom_t atom(std::string_view name) const { return internAtom(connection_, name); }

    /// The window of the client that owns the selection, or none.
    xcb_window_t ownerOf(xcb_atom_t selection);
    bool isOwned(xcb_atom_t selection) { return ownerOf(selection) != XCB_NONE; }

    /// Whether a compositor mixes the windows, so that a part of one can be seen through.
    bool isComposited() { return isOwned(atom("_NET_WM_CM_S" + std::to_string(screenNumber_))); }

    Subscription observeEvents(std::function<void(const Event&)> callback) {
        return observers_.add(std::move(callback));
    }

    /// To be called after requests without reply and after waiting for replies: flushes, and
    /// delivers the events that came with replies, at the end of the run-loop turn.
    void finishTurn() { finishTurn_.request(); }

    /// Flushes and returns when the server has done everything it was asked; false where it has
    /// gone.
    bool synchronize();

    /// Delivers the events of everything that has happened on the server so far.
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
    bool lossIsTold_ = false;
    std::unique_ptr<QSocketNotifier> readable_;
    Deferred finishTurn_;
};

} // namespace nocta
