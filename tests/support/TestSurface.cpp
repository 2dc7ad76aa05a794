#include "support/TestSurface.h"

#include "support/LayerShellServerProtocol.h"
#include "support/TestOutput.h"

#include <cstddef>

namespace nocta {

namespace {

constexpr std::uint32_t horizontal =
    ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;
constexpr std::uint32_t vertical =
    ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM;

int alphaInTheMiddle(wl_shm_buffer* buffer) {
    const auto column = static_cast<std::size_t>(wl_shm_buffer_get_width(buffer) / 2);
    const auto row = static_cast<std::size_t>(wl_shm_buffer_get_height(buffer) / 2);
    const auto stride = static_cast<std::size_t>(wl_shm_buffer_get_stride(buffer));
    wl_shm_buffer_begin_access(buffer);
    const auto* const line =
        static_cast<const std::byte*>(wl_shm_buffer_get_data(buffer)) + row * stride;
    const auto pixel = reinterpret_cast<const std::uint32_t*>(line)[column];
    wl_shm_buffer_end_access(buffer);
    constexpr auto opaque = 255;
    return wl_shm_buffer_get_format(buffer) == WL_SHM_FORMAT_ARGB8888
               ? static_cast<int>(pixel >> 24U)
               : opaque;
}

} // namespace

void TestSurface::takeRole(wl_resource* layer) {
    if (role != nullptr || hasPicture || attached.value_or(0) != 0) {
        violate("a surface got a second role, or a role after a buffer");
    }
    role = layer;
    current = {};
    configured = acknowledged = shown = 0;
    isClosed = false;
}

void TestSurface::configure(std::uint32_t width, std::uint32_t height) {
    zwlr_layer_surface_v1_send_configure(role, ++configured, width, height);
}

void TestSurface::acknowledge(std::uint32_t serial) {
    if (serial == 0 || serial > configured) {
        violate("a client acknowledged a configuration that was never sent");
    }
    acknowledged = serial;
}

void TestSurface::commit() {
    const auto before = std::exchange(current, pending);
    current.width = before.width;
    current.height = before.height;
    current.alpha = before.alpha;
    const auto wasMapped = isMapped();
    if (attached) {
        showAttached();
    }
    if (role != nullptr && !isClosed && configured == 0) {
        configureFirst();
    }
    for (auto* const frame : std::exchange(frames, {})) {
        wl_callback_send_done(frame, 0);
        wl_resource_destroy(frame);
    }
    if (!wasMapped && isMapped()) {
        compositor->appears(*this);
    }
    compositor->updateKeyboardFocus();
}

void TestSurface::configureFirst() {
    const auto lengthOf = [this](std::uint32_t wanted, std::uint32_t edges, std::uint32_t output) {
        if (wanted == 0 && (current.anchors & edges) != edges) {
            violate("a surface has no size and is not anchored to opposite edges");
        }
        return wanted == 0 ? output : wanted;
    };
    const auto width = lengthOf(current.wantedWidth, horizontal, TestOutput::width);
    const auto height = lengthOf(current.wantedHeight, vertical, TestOutput::height);
    const auto [first, second] = compositor->newSize_.value_or(std::pair(width, height));
    if (compositor->closesNew_) {
        compositor->close(*this);
    } else {
        configure(first, second);
    }
}

void TestSurface::showAttached() {
    const auto id = std::exchange(attached, std::nullopt);
    auto* const object = wl_client_get_object(wl_resource_get_client(resource), *id);
    auto* const buffer = object == nullptr ? nullptr : wl_shm_buffer_get(object);
    hasPicture = buffer != nullptr;
    if (!hasPicture) {
        return;
    }
    if (role != nullptr && acknowledged == 0) {
        violate("a layer surface got a buffer before its size was acknowledged");
    }
    const auto isScaled = destination.first != 0;
    current.width = isScaled ? destination.first : wl_shm_buffer_get_width(buffer);
    current.height = isScaled ? destination.second : wl_shm_buffer_get_height(buffer);
    current.alpha = alphaInTheMiddle(buffer);
    shown = acknowledged;
    wl_buffer_send_release(object);
}

} // namespace nocta
