#include "support/ToplevelCompositor.h"

#include <algorithm>
#include <stdexcept>
#include <wayland-server.h>
#include <wlr-foreign-toplevel-management-unstable-v1-server-protocol.h>

namespace nocta {

namespace {

constexpr int width = 1280;
constexpr int height = 720;
constexpr int managerVersion = 3;

void destroy(wl_client* /*client*/, wl_resource* resource) {
    wl_resource_destroy(resource);
}

} // namespace

struct ToplevelCompositor::Output {
    std::string name;
    int x;
    wl_global* global = nullptr;
    wl_resource* resource = nullptr; ///< the client's object for this output
};

struct ToplevelCompositor::Interfaces {
    static void bindOutput(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
        static constexpr struct wl_output_interface requests { .release = destroy };
        auto& output = *static_cast<Output*>(data);
        output.resource =
            wl_resource_create(client, &wl_output_interface, static_cast<int>(version), id);
        wl_resource_set_implementation(output.resource, &requests, data, nullptr);
        wl_output_send_geometry(output.resource, output.x, 0, 0, 0, WL_OUTPUT_SUBPIXEL_UNKNOWN, "",
                                "", WL_OUTPUT_TRANSFORM_NORMAL);
        wl_output_send_mode(output.resource, WL_OUTPUT_MODE_CURRENT, width, height, 0);
        wl_output_send_name(output.resource, output.name.c_str());
        wl_output_send_done(output.resource);
    }

    static void bindManager(wl_client* client, void* data, std::uint32_t version,
                            std::uint32_t id) {
        static constexpr struct zwlr_foreign_toplevel_manager_v1_interface requests {
            .stop = [](wl_client* /*client*/, wl_resource* manager) {
                zwlr_foreign_toplevel_manager_v1_send_finished(manager);
                wl_resource_destroy(manager);
            }
        };
        auto& manager = static_cast<ToplevelCompositor*>(data)->manager_;
        manager = wl_resource_create(client, &zwlr_foreign_toplevel_manager_v1_interface,
                                     static_cast<int>(version), id);
        wl_resource_set_implementation(manager, &requests, data, nullptr);
    }
};

ToplevelCompositor::ToplevelCompositor(bool reportsWindows) {
    if (reportsWindows) {
        send([this] {
            wl_global_create(thread_.display(), &zwlr_foreign_toplevel_manager_v1_interface,
                             managerVersion, this, Interfaces::bindManager);
        });
    }
}

ToplevelCompositor::~ToplevelCompositor() = default;

void ToplevelCompositor::addOutput(const std::string& name, int x) {
    auto& output = outputs_.emplace_back(Output{.name = name, .x = x});
    output.global = wl_global_create(thread_.display(), &wl_output_interface, 4, &output,
                                     Interfaces::bindOutput);
}

void ToplevelCompositor::removeOutput(const std::string& name) {
    wl_global_remove(find(name).global);
}

void ToplevelCompositor::open() {
    // The client only observes the windows, so it makes no requests other than `destroy`.
    static constexpr struct zwlr_foreign_toplevel_handle_v1_interface requests {
        .destroy = destroy
    };
    auto* const window = wl_resource_create(wl_resource_get_client(manager_),
                                            &zwlr_foreign_toplevel_handle_v1_interface,
                                            wl_resource_get_version(manager_), 0);
    wl_resource_set_implementation(window, &requests, nullptr, nullptr);
    zwlr_foreign_toplevel_manager_v1_send_toplevel(manager_, window);
    windows_.push_back(window);
}

void ToplevelCompositor::setTitle(std::size_t window, const std::string& title) {
    zwlr_foreign_toplevel_handle_v1_send_title(windows_.at(window), title.c_str());
}

void ToplevelCompositor::setAppId(std::size_t window, const std::string& appId) {
    zwlr_foreign_toplevel_handle_v1_send_app_id(windows_.at(window), appId.c_str());
}

void ToplevelCompositor::setStates(std::size_t window, const std::vector<State>& states) {
    auto copy = states;
    if (wl_resource_get_version(manager_) <
        ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_FULLSCREEN_SINCE_VERSION) {
        std::erase(copy, State::fullScreen);
    }
    wl_array array{.size = copy.size() * sizeof(State), .alloc = 0, .data = copy.data()};
    zwlr_foreign_toplevel_handle_v1_send_state(windows_.at(window), &array);
}

void ToplevelCompositor::enter(std::size_t window, const std::string& output) {
    zwlr_foreign_toplevel_handle_v1_send_output_enter(windows_.at(window), find(output).resource);
}

void ToplevelCompositor::finishDescription(std::size_t window) {
    zwlr_foreign_toplevel_handle_v1_send_done(windows_.at(window));
}

void ToplevelCompositor::close(std::size_t window) {
    zwlr_foreign_toplevel_handle_v1_send_closed(windows_.at(window));
}

void ToplevelCompositor::finish() {
    zwlr_foreign_toplevel_manager_v1_send_finished(manager_);
    wl_resource_destroy(manager_);
}

/// The newest output with this name.
ToplevelCompositor::Output& ToplevelCompositor::find(const std::string& name) {
    const auto output = std::find_if(outputs_.rbegin(), outputs_.rend(),
                                     [&](const Output& known) { return known.name == name; });
    if (output == outputs_.rend()) {
        throw std::runtime_error("there is no output " + name);
    }
    return *output;
}

} // namespace nocta
