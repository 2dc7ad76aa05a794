#pragma once

#include "backends/linux/x11/GammaRamp.h"

#include <xcb/randr.h>

#include <map>

namespace nocta {

/// The ramps that an X server's CRTCs had before Nocta wrote to them, by CRTC.
using FactoryRamps = std::map<xcb_randr_crtc_t, GammaRamp>;

// They are kept on the server itself for as long as they are not in force: whatever dies, the next
// Nocta or guardian of that server finds them. Each function sends its requests and flushes
// nothing, except that reading waits for the answer.

/// What is kept, without what does not fit its CRTC.
FactoryRamps readFactoryRamps(xcb_connection_t* connection, xcb_window_t root);

/// Keeps these and no others, at once for whoever reads them.
void storeFactoryRamps(xcb_connection_t* connection, xcb_window_t root, const FactoryRamps& ramps);

/// Writes all of them to their CRTCs and keeps them no more.
void restore(xcb_connection_t* connection, xcb_window_t root, const FactoryRamps& ramps);

} // namespace nocta
