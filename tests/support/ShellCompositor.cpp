#include "support/ShellCompositor.h"

#include "support/LayerShellServerProtocol.h"
#include "support/ShellInterfaces.h"
#include "support/TestSurface.h"

#include <algorithm>
#include <ranges>
#include <utility>
#include <viewporter-server-protocol.h>
#include <xdg-shell-server-protocol.h>

namespace nocta {

ShellCompositor::ShellCompositor(const std::set<std::string>& withheld) {
    call([&] {
        auto* const display = outputs_.thread().display();
        if (!withheld.contains(wl_shm_interface.name)) {
            wl_display_init_shm(display);
        }
        const auto offer = [&](const wl_interface& interface, int version,
                               wl_global_bind_func_t bind) {
            if (!withheld.contains(interface.name)) {
                wl_global_create(display, &interface, version, this, bind);
            }
        };
        offer(wl_compositor_interface, 4, Interfaces::bindCompositor);
        offer(xdg_wm_base_interface, 1, Interfaces::bindXdgShell);
        offer(wp_viewporter_interface, 1, Interfaces::bindViewporter);
        offer(zwlr_layer_shell_v1_interface, 4, Interfaces::bindLayerShell);
        seat_.offerOn(display);
    });
}

ShellCompositor::~ShellCompositor() = default;

void ShellCompositor::removeOutput(const std::string& name) {
    call([&] {
        for (auto& surface : surfaces_) {
            if (surface.role != nullptr && surface.current.output == name) {
                close(surface);
            }
        }
    });
    outputs_.removeOutput(name);
}

std::vector<TestLayer> ShellCompositor::mapped() const {
    std::vector<TestLayer> layers;
    call([&] {
        for (const auto* const surface : mappedSurfaces()) {
            layers.push_back(surface->current);
        }
    });
    return layers;
}

bool ShellCompositor::isSettled() const {
    bool isSettled = false;
    call([&] { isSettled = std::ranges::all_of(surfaces_, &TestSurface::isSettled); });
    return isSettled;
}

std::optional<std::size_t> ShellCompositor::keyboardFocus() const {
    std::optional<std::size_t> index;
    call([&] {
        const auto surfaces = mappedSurfaces();
        const auto found =
            std::ranges::find(surfaces, seat_.keyboardFocus(), &TestSurface::resource);
        if (found != surfaces.end()) {
            index = static_cast<std::size_t>(found - surfaces.begin());
        }
    });
    return index;
}

int ShellCompositor::focusGains() const {
    int gains = 0;
    call([&] { gains = seat_.focusGains(); });
    return gains;
}

std::vector<std::string> ShellCompositor::violations() const {
    std::vector<std::string> violations;
    call([&] { violations = violations_; });
    return violations;
}

std::size_t ShellCompositor::surfaceCount() const {
    std::size_t count = 0;
    call([&] { count = surfaces_.size(); });
    return count;
}

void ShellCompositor::configureNew(std::uint32_t width, std::uint32_t height) {
    call([&] { newSize_ = {width, height}; });
}

void ShellCompositor::closeNew() {
    call([&] { closesNew_ = true; });
}

void ShellCompositor::configure(std::size_t surface, std::uint32_t width, std::uint32_t height) {
    call([&] { mappedSurfaces().at(surface)->configure(width, height); });
}

void ShellCompositor::close(std::size_t surface) {
    call([&] { close(*mappedSurfaces().at(surface)); });
}

void ShellCompositor::press(std::uint32_t key) {
    call([&] { seat_.press(key); });
}

void ShellCompositor::takeKeyboard() {
    call([&] {
        for (auto* const surface : mappedSurfaces()) {
            surface->hasLostKeyboard = true;
        }
        updateKeyboardFocus();
    });
}

void ShellCompositor::movePointer(std::size_t surface, int x, int y) {
    call([&] { seat_.movePointer(mappedSurfaces().at(surface)->resource, x, y); });
}

void ShellCompositor::putPointerIntoNext(int x, int y) {
    call([&] { newPointer_ = {x, y}; });
}

void ShellCompositor::click() {
    call([&] { seat_.click(); });
}

std::vector<TestSurface*> ShellCompositor::mappedSurfaces() const {
    std::vector<TestSurface*> mapped;
    for (const auto& surface : surfaces_) {
        if (surface.isMapped()) {
            mapped.push_back(const_cast<TestSurface*>(&surface));
        }
    }
    return mapped;
}

void ShellCompositor::close(TestSurface& surface) {
    zwlr_layer_surface_v1_send_closed(surface.role);
    surface.isClosed = true;
    updateKeyboardFocus();
}

void ShellCompositor::appears(TestSurface& surface) {
    if (const auto place = std::exchange(newPointer_, std::nullopt)) {
        seat_.movePointer(surface.resource, place->first, place->second);
    }
}

void ShellCompositor::updateKeyboardFocus() {
    auto surfaces = mappedSurfaces();
    const auto wants = [](const TestSurface* surface) {
        return !surface->hasLostKeyboard &&
               surface->current.keyboard == ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_EXCLUSIVE;
    };
    const auto newest = std::ranges::find_if(surfaces.rbegin(), surfaces.rend(), wants);
    seat_.setKeyboardFocus(newest == surfaces.rend() ? nullptr : (*newest)->resource);
}

} // namespace nocta
