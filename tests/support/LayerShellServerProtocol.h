#pragma once

#include <wayland-server.h>

// One of the protocol's arguments has a name that C++ reserves.
#define namespace name_space
#include <wlr-layer-shell-unstable-v1-server-protocol.h>
#undef namespace
