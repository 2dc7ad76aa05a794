#pragma once

#include "support/ShellCompositor.h"

#include <wayland-server.h>

namespace nocta {

/// The requests that clients can make to a `ShellCompositor`. The user data of a global object is
/// the compositor, and that of a region is whether the region is empty. The user data of any other
/// object is its surface, or null after the surface is destroyed.
struct ShellCompositor::Interfaces {
    static void makeRegion(wl_client* client, wl_resource* compositor, std::uint32_t id);
    static void endSurface(wl_resource* resource);
    static void destroySurface(wl_client* /*client*/, wl_resource* resource);
    static void makeSurface(wl_client* client, wl_resource* compositor, std::uint32_t id);
    static void bindCompositor(wl_client* client, void* self, std::uint32_t version,
                               std::uint32_t id);
    static void bindViewporter(wl_client* client, void* self, std::uint32_t version,
                               std::uint32_t id);
    static void endRole(wl_resource* role);
    static void makeLayer(wl_client* client, wl_resource* manager, std::uint32_t id,
                          wl_resource* of, wl_resource* output, std::uint32_t layer,
                          const char* name);
    static void bindLayerShell(wl_client* client, void* self, std::uint32_t version,
                               std::uint32_t id);
    static void bindXdgShell(wl_client* client, void* self, std::uint32_t version,
                             std::uint32_t id);
};

} // namespace nocta
