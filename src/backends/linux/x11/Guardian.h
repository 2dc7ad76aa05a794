#pragma once

#include "backends/linux/FileDescriptor.h"
#include "backends/linux/x11/X11Connection.h"

#include <QSocketNotifier>

#include <memory>
#include <sys/types.h>

namespace nocta {

/// The process that gives the screen back when this one dies without doing so. An X server keeps
/// gamma ramps after the client that wrote them has gone, whatever killed it; so a small helper
/// process is started before the first write, and it gives the factory ramps back if its socket
/// closes while it lives. A helper that dies is replaced.
class Guardian {
public:
    /// `connection` is the one that writes the ramps.
    explicit Guardian(X11Connection& connection) : connection_(connection) {}
    Guardian(const Guardian&) = delete;
    Guardian& operator=(const Guardian&) = delete;
    ~Guardian() { wake(); }

    /// Starts the helper unless it runs, and waits until an earlier one, of a Nocta that has died,
    /// has done its work. False while another Nocta that is alive controls the display: its ramps
    /// must not be taken for the factory's. A helper that cannot be started is reported
    /// on standard error, and the display stays unguarded.
    bool start();

    /// The screen has been given back: the helper ends without a deed.
    void dismiss();

    /// The screen could not be given back by this process: the helper is left to do it.
    void wake();

private:
    enum class Outcome { none, guarded, unguarded, refused };

    Outcome launch();
    bool hasOwner();
    void replace();
    void stop();
    void closeSocket();

    X11Connection& connection_;
    Outcome outcome_ = Outcome::none;
    int replacements_ = 0;
    pid_t process_ = -1;
    FileDescriptor socket_;
    std::unique_ptr<QSocketNotifier> closed_;
};

} // namespace nocta
