#pragma once

#include "backends/linux/FileDescriptor.h"
#include "backends/linux/x11/GammaRamp.h"
#include "backends/linux/x11/X11Connection.h"

#include <QSocketNotifier>
#include <xcb/randr.h>

#include <map>
#include <memory>
#include <sys/types.h>

namespace nocta {

/// The process that gives the screen back when this one dies without doing so. An X server keeps
/// gamma ramps after the client that wrote them has gone, whatever killed it; so before the first
/// write a small helper process is given the factory ramps, and it writes them back if its socket
/// closes while it lives. A helper that dies is replaced.
class Guardian {
public:
    /// `connection` is the one that writes the ramps.
    explicit Guardian(X11Connection& connection) : connection_(connection) {}
    Guardian(const Guardian&) = delete;
    Guardian& operator=(const Guardian&) = delete;
    ~Guardian() { release(); }

    /// Starts the helper unless it runs, and waits until an earlier one, of a Nocta that has died,
    /// has done its work. False when another Nocta that is alive controls the display: its ramps
    /// must not be taken for the factory's. A helper that cannot be started is reported on
    /// standard error, and the display stays unguarded.
    bool start();

    /// What to give back for a CRTC.
    void hold(xcb_randr_crtc_t crtc, const GammaRamp& factory);

    /// The screen has been given back: the helper ends, and holds nothing any more.
    void release();

private:
    enum class Outcome { guarded, unguarded, refused };

    Outcome launch();
    void send(xcb_randr_crtc_t crtc, const GammaRamp& factory);
    void replace();
    void end();

    X11Connection& connection_;
    Outcome outcome_ = Outcome::unguarded;
    bool isStarted_ = false;
    int replacements_ = 0;
    pid_t process_ = -1;
    FileDescriptor socket_;
    std::unique_ptr<QSocketNotifier> closed_;
    std::map<xcb_randr_crtc_t, GammaRamp> held_;
};

} // namespace nocta
