#pragma once

#include "backends/linux/process/HelperProcess.h"
#include "backends/linux/x11/X11Connection.h"
#include "base/CallbackList.h"
#include "base/Timer.h"

#include <functional>
#include <set>

namespace nocta {

/// The process that gives the screen back when this one dies without doing so. An X server keeps
/// gamma ramps and colour matrices after the client that wrote them has gone, whatever killed it;
/// so a small helper process is started before the first write, and it gives back what there was
/// before if its socket closes while it lives. A helper that dies is replaced: at once, and if it
/// keeps dying after a pause or at the next write. Nobody waits for a helper in a call; it may have
/// to see first what becomes of an earlier one, of a Nocta that has died.
class Guardian {
public:
    enum class Permission {
        pending, ///< the helper has not answered yet
        granted,
        refused, ///< another Nocta that is alive controls the display
    };

    /// `connection` is the one that writes.
    Guardian(X11Connection& connection, RunLoop& runLoop)
        : connection_(connection), runLoop_(runLoop) {}
    Guardian(const Guardian&) = delete;
    Guardian& operator=(const Guardian&) = delete;
    ~Guardian() { wake(); }

    /// To be called by everyone who is about to write: starts the helper unless it runs. A helper
    /// that cannot be started is reported on standard error, and the display stays unguarded.
    Permission request(const void* writer);

    /// Calls back when the permission has changed.
    Subscription observe(std::function<void(const Permission&)> callback) {
        return changed_.add(std::move(callback));
    }

    /// To be called by everyone who has requested: calls `restore`, which gives back what he has
    /// written, unless another Nocta has taken the display over. After the last one the helper ends
    /// without a deed, and if the server could not be reached, it is left to it.
    void restore(const void* writer, const std::function<void()>& restore);

    /// To be called by everyone who has requested and written nothing.
    void dismiss(const void* writer);

    /// Whether a helper runs that has not answered yet.
    bool isStarting() const { return timeout_.isValid(); }

private:
    void launch();
    void receive();
    void answer(char byte);
    void replace();
    void change(Permission permission);
    void complain(const char* before, const char* after);
    xcb_window_t owner();
    bool isInControl();
    void wake();

    X11Connection& connection_;
    RunLoop& runLoop_;
    Permission permission_ = Permission::pending;
    std::set<const void*> writers_;
    CallbackList<Permission> changed_;
    xcb_window_t helperWindow_ = XCB_NONE; ///< of the last helper that was ready
    int replacements_ = 0;                 ///< without a pause
    MonotonicTime lastDeath_;
    bool hasComplained_ = false;
    HelperProcess helper_;
    Timer timeout_;
    Timer pause_;
};

} // namespace nocta
