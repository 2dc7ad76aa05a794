#pragma once

#include "backends/linux/process/HelperProcess.h"
#include "backends/linux/x11/X11Connection.h"
#include "base/CallbackList.h"
#include "base/Timer.h"

#include <functional>
#include <set>

namespace nocta {

/// Manages the helper process that gives the screen back if this process dies without doing so. An
/// X server keeps gamma ramps and color matrices after the client that wrote them has exited or
/// died. So Nocta starts the small helper before the first write. If the socket to Nocta closes
/// while the helper is running, the helper restores the ramps and matrices from before the first
/// write. If the helper dies, it is replaced: immediately, or, if it keeps dying, after a pause or
/// on the next write. No call waits until the helper is ready, because the helper may have to wait
/// for the guardian of a Nocta that has died.
class Guardian {
public:
    enum class Permission {
        pending, ///< the helper has not answered yet
        granted,
        refused, ///< another running Nocta controls the display
    };

    /// `connection` is the connection that the writers use.
    Guardian(X11Connection& connection, RunLoop& runLoop)
        : connection_(connection), runLoop_(runLoop) {}
    Guardian(const Guardian&) = delete;
    Guardian& operator=(const Guardian&) = delete;
    ~Guardian() { wake(); }

    /// Every writer must call this before it writes. This function starts the helper unless one is
    /// running. If the helper cannot be started, a line about it is printed to standard error, and
    /// the display stays unguarded.
    Permission request(const void* writer);

    /// Calls `callback` when the permission changes.
    Subscription observe(std::function<void(const Permission&)> callback) {
        return changed_.add(std::move(callback));
    }

    /// Every writer that has called `request` must call this function when it is done. The function
    /// calls `restore`, which undoes the writer's changes, unless another Nocta has taken over the
    /// display. After the last writer, the helper exits without doing anything. If the server
    /// cannot be reached, the helper does the restoring.
    void restore(const void* writer, const std::function<void()>& restore);

    /// Ends a writer that has called `request` but written nothing.
    void dismiss(const void* writer);

    /// Whether a helper is running that has not answered yet.
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
    bool wasReady_ = false;                ///< a helper was ready; it is replaced if it dies
    xcb_window_t helperWindow_ = XCB_NONE; ///< the window of the last helper that was ready
    int replacements_ = 0;                 ///< since the last pause
    MonotonicTime lastDeath_;
    bool hasComplained_ = false;
    HelperProcess helper_;
    Timer timeout_;
    Timer pause_;
};

} // namespace nocta
