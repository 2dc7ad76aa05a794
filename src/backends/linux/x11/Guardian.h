#pragma once

#include "backends/linux/HelperProcess.h"
#include "backends/linux/x11/X11Connection.h"

namespace nocta {

/// The process that gives the screen back when this one dies without doing so. An X server keeps
/// gamma ramps and colour matrices after the client that wrote them has gone, whatever killed it;
/// so a small helper process is started before the first write, and it gives back what there was
/// before if its socket closes while it lives. A helper that dies is replaced.
class Guardian {
public:
    /// `connection` is the one that writes.
    explicit Guardian(X11Connection& connection) : connection_(connection) {}
    Guardian(const Guardian&) = delete;
    Guardian& operator=(const Guardian&) = delete;
    ~Guardian() { wake(); }

    /// To be called by everyone who is about to write: starts the helper unless it runs, and waits
    /// until an earlier one, of a Nocta that has died, has done its work. False while another Nocta
    /// that is alive controls the display: what it shows must not be taken for the factory's. A
    /// helper that cannot be started is reported on standard error, and the display stays
    /// unguarded.
    bool start();

    /// To be called by everyone who has given back what he has written: after the last one the
    /// helper ends without a deed.
    void dismiss();

    /// The screen could not be given back by this process: the helper is left to do it.
    void wake();

private:
    enum class Outcome { none, guarded, unguarded, refused };

    Outcome launch();
    bool hasOwner();
    void replace();

    X11Connection& connection_;
    Outcome outcome_ = Outcome::none;
    int writers_ = 0;
    int replacements_ = 0;
    HelperProcess helper_;
};

} // namespace nocta
