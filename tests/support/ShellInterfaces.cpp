#include "support/ShellInterfaces.h"

#include "support/LayerShellServerProtocol.h"
#include "support/TestOutput.h"
#include "support/TestSurface.h"

#include <algorithm>
#include <string>
#include <viewporter-server-protocol.h>
#include <xdg-shell-server-protocol.h>

namespace nocta {

namespace {

void destroy(wl_client* /*client*/, wl_resource* resource) {
    wl_resource_destroy(resource);
}

TestSurface& surfaceOf(wl_resource* resource) {
    return *static_cast<TestSurface*>(wl_resource_get_user_data(resource));
}

template <class Requests>
wl_resource* make(wl_client* client, const wl_interface& interface, int version, std::uint32_t id,
                  const Requests& requests, void* data,
                  wl_resource_destroy_func_t atEnd = nullptr) {
    auto* const resource = wl_resource_create(client, &interface, version, id);
    wl_resource_set_implementation(resource, &requests, data, atEnd);
    return resource;
}

} // namespace

void ShellCompositor::Interfaces::makeRegion(wl_client* client, wl_resource* /*compositor*/,
                                             std::uint32_t id) {
    static constexpr struct wl_region_interface requests {
        .destroy = destroy,
        .add =
            [](wl_client* /*client*/, wl_resource* region, std::int32_t /*x*/, std::int32_t /*y*/,
               std::int32_t /*width*/, std::int32_t /*height*/) {
                *static_cast<bool*>(wl_resource_get_user_data(region)) = false;
            },
        .subtract = [](wl_client* /*client*/, wl_resource* /*region*/, std::int32_t /*x*/,
                       std::int32_t /*y*/, std::int32_t /*width*/, std::int32_t /*height*/) {}
    };
    make(client, wl_region_interface, 1, id, requests, new bool(true),
         [](wl_resource* region) { delete static_cast<bool*>(wl_resource_get_user_data(region)); });
}

void ShellCompositor::Interfaces::endSurface(wl_resource* resource) {
    auto& surface = surfaceOf(resource);
    auto& self = *surface.compositor;
    if (surface.role != nullptr) { // only while a client disconnects
        wl_resource_set_user_data(surface.role, nullptr);
    }
    self.seat_.forget(resource);
    self.surfaces_.remove_if([&](const TestSurface& known) { return known.resource == resource; });
    self.updateKeyboardFocus();
}

void ShellCompositor::Interfaces::destroySurface(wl_client* /*client*/, wl_resource* resource) {
    if (auto& surface = surfaceOf(resource); surface.role != nullptr) {
        surface.compositor->violations_.emplace_back(
            "a surface was destroyed before its role object");
    }
    wl_resource_destroy(resource);
}

void ShellCompositor::Interfaces::makeSurface(wl_client* client, wl_resource* compositor,
                                              std::uint32_t id) {
    using Length = std::int32_t;
    static constexpr auto ignoreDamage = [](wl_client* /*client*/, wl_resource* /*surface*/,
                                            Length /*x*/, Length /*y*/, Length /*width*/,
                                            Length /*height*/) {};
    static constexpr auto ignoreNumber = [](wl_client* /*client*/, wl_resource* /*surface*/,
                                            std::int32_t /*number*/) {};
    static constexpr struct wl_surface_interface requests {
        .destroy = destroySurface,
        .attach =
            [](wl_client* /*client*/, wl_resource* surface, wl_resource* buffer, std::int32_t /*x*/,
               std::int32_t /*y*/) {
                surfaceOf(surface).attached = buffer == nullptr ? 0 : wl_resource_get_id(buffer);
            },
        .damage = ignoreDamage,
        .frame =
            [](wl_client* asking, wl_resource* surface, std::uint32_t callbackId) {
                surfaceOf(surface).frames.push_back(
                    wl_resource_create(asking, &wl_callback_interface, 1, callbackId));
            },
        .set_opaque_region = [](wl_client* /*client*/, wl_resource* /*surface*/,
                                wl_resource* /*region*/) {},
        .set_input_region =
            [](wl_client* /*client*/, wl_resource* surface, wl_resource* region) {
                surfaceOf(surface).pending.acceptsInput =
                    region == nullptr || !*static_cast<bool*>(wl_resource_get_user_data(region));
            },
        .commit = [](wl_client* /*client*/, wl_resource* surface) { surfaceOf(surface).commit(); },
        .set_buffer_transform = ignoreNumber, .set_buffer_scale = ignoreNumber,
        .damage_buffer = ignoreDamage, .offset = nullptr
    };
    auto& self = *static_cast<ShellCompositor*>(wl_resource_get_user_data(compositor));
    auto& surface = self.surfaces_.emplace_back(TestSurface{.compositor = &self});
    surface.resource = make(client, wl_surface_interface, wl_resource_get_version(compositor), id,
                            requests, &surface, endSurface);
}

void ShellCompositor::Interfaces::bindCompositor(wl_client* client, void* self,
                                                 std::uint32_t version, std::uint32_t id) {
    static constexpr struct wl_compositor_interface requests {
        .create_surface = makeSurface, .create_region = makeRegion
    };
    make(client, wl_compositor_interface, static_cast<int>(version), id, requests, self);
}

void ShellCompositor::Interfaces::bindViewporter(wl_client* client, void* self,
                                                 std::uint32_t version, std::uint32_t id) {
    static constexpr struct wp_viewport_interface viewportRequests {
        .destroy = destroy,
        .set_source = [](wl_client* /*client*/, wl_resource* /*viewport*/, wl_fixed_t /*x*/,
                         wl_fixed_t /*y*/, wl_fixed_t /*width*/, wl_fixed_t /*height*/) {},
        .set_destination = [](wl_client* /*client*/, wl_resource* viewport, std::int32_t width,
                              std::int32_t height) {
            surfaceOf(viewport).destination = {width, height};
        }
    };
    static constexpr struct wp_viewporter_interface requests {
        .destroy = destroy, .get_viewport = [](wl_client* asking, wl_resource* /*manager*/,
                                               std::uint32_t viewportId, wl_resource* surface) {
            make(asking, wp_viewport_interface, 1, viewportId, viewportRequests,
                 &surfaceOf(surface));
        }
    };
    make(client, wp_viewporter_interface, static_cast<int>(version), id, requests, self);
}

void ShellCompositor::Interfaces::endRole(wl_resource* role) {
    auto* const surface = static_cast<TestSurface*>(wl_resource_get_user_data(role));
    if (surface != nullptr) {
        surface->role = nullptr;
        surface->compositor->updateKeyboardFocus();
    }
}

void ShellCompositor::Interfaces::makeLayer(wl_client* client, wl_resource* manager,
                                            std::uint32_t id, wl_resource* of, wl_resource* output,
                                            std::uint32_t layer, const char* /*name*/) {
    static constexpr struct zwlr_layer_surface_v1_interface requests {
        .set_size =
            [](wl_client* /*client*/, wl_resource* role, std::uint32_t width,
               std::uint32_t height) {
                surfaceOf(role).pending.wantedWidth = width;
                surfaceOf(role).pending.wantedHeight = height;
            },
        .set_anchor = [](wl_client* /*client*/, wl_resource* role,
                         std::uint32_t anchors) { surfaceOf(role).pending.anchors = anchors; },
        .set_exclusive_zone =
            [](wl_client* /*client*/, wl_resource* role, std::int32_t zone) {
                surfaceOf(role).pending.exclusiveZone = zone;
            },
        .set_margin = [](wl_client* /*client*/, wl_resource* role, std::int32_t top,
                         std::int32_t /*right*/, std::int32_t /*bottom*/,
                         std::int32_t /*left*/) { surfaceOf(role).pending.margin = top; },
        .set_keyboard_interactivity =
            [](wl_client* /*client*/, wl_resource* role, std::uint32_t keyboard) {
                surfaceOf(role).pending.keyboard = keyboard;
            },
        .get_popup = [](wl_client* /*client*/, wl_resource* /*role*/, wl_resource* /*popup*/) {},
        .ack_configure = [](wl_client* /*client*/, wl_resource* role,
                            std::uint32_t serial) { surfaceOf(role).acknowledge(serial); },
        .destroy = destroy,
        .set_layer = [](wl_client* /*client*/, wl_resource* role, std::uint32_t changed) {
            surfaceOf(role).pending.layer = changed;
        }
    };
    auto& surface = surfaceOf(of);
    auto& self = *surface.compositor;
    const auto* const place =
        output == nullptr ? nullptr : static_cast<TestOutput*>(wl_resource_get_user_data(output));
    surface.pending = {.output = place == nullptr ? std::string() : place->name,
                       .layer = layer,
                       .acceptsInput = surface.pending.acceptsInput};
    surface.takeRole(make(client, zwlr_layer_surface_v1_interface, wl_resource_get_version(manager),
                          id, requests, &surface, endRole));
    const auto known =
        std::ranges::find(self.surfaces_, &surface, [](const TestSurface& each) { return &each; });
    self.surfaces_.splice(self.surfaces_.end(), self.surfaces_, known);
    if (place != nullptr && place->isRemoved) {
        self.close(surface);
    }
}

void ShellCompositor::Interfaces::bindLayerShell(wl_client* client, void* self,
                                                 std::uint32_t version, std::uint32_t id) {
    static constexpr struct zwlr_layer_shell_v1_interface requests {
        .get_layer_surface = makeLayer, .destroy = destroy
    };
    make(client, zwlr_layer_shell_v1_interface, static_cast<int>(version), id, requests, self);
}

/// Any request is a violation, because every window in the tests should be a layer surface.
void ShellCompositor::Interfaces::bindXdgShell(wl_client* client, void* self, std::uint32_t version,
                                               std::uint32_t id) {
    static constexpr auto dispatch = [](const void* compositor, void* /*resource*/,
                                        std::uint32_t opcode, const wl_message* request,
                                        wl_argument* /*arguments*/) {
        if (opcode != 0) { // `destroy` is allowed
            static_cast<ShellCompositor*>(const_cast<void*>(compositor))
                ->violations_.push_back(std::string("unexpected request to xdg-shell: ") +
                                        request->name);
        }
        return 0;
    };
    auto* const shell =
        wl_resource_create(client, &xdg_wm_base_interface, static_cast<int>(version), id);
    wl_resource_set_dispatcher(shell, dispatch, self, nullptr, nullptr);
}

} // namespace nocta
