#pragma once

#include "backends/linux/gamma/GammaRamp.h"

#include <xcb/randr.h>

#include <map>

namespace nocta {

/// The ramps that an X server's CRTCs had before Nocta wrote to them, by CRTC.
using FactoryRamps = std::map<xcb_randr_crtc_t, GammaRamp>;

// The ramps are kept on the server itself while Nocta's own ramps are in effect. So no matter which
// process dies, the next Nocta or guardian on that server finds the ramps. Each function sends its
// requests without flushing; only reading waits for the answer.

/// The stored ramps, except those whose size does not match their CRTC.
FactoryRamps readFactoryRamps(xcb_connection_t* connection, xcb_window_t root);

/// Replaces the stored ramps. Later reads return the new ones immediately.
void storeFactoryRamps(xcb_connection_t* connection, xcb_window_t root, const FactoryRamps& ramps);

/// Writes the given ramps to their CRTCs and removes the stored ones.
void restore(xcb_connection_t* connection, xcb_window_t root, const FactoryRamps& ramps);

} // namespace nocta
