#pragma once

#include <wayland-client.h>

// One of the protocol's arguments is named `namespace`, which is a keyword in C++.
#if defined(__clang__)
#pragma clang diagnostic ignored "-Wkeyword-macro"
#endif
#define namespace name_space
#include <wlr-layer-shell-unstable-v1-client-protocol.h>
#undef namespace
