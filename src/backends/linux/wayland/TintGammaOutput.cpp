#include "backends/linux/wayland/TintGammaOutput.h"

#include "backends/linux/files/FileDescriptor.h"
#include "backends/linux/wayland/LayerShellProtocol.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <viewporter-client-protocol.h>

namespace nocta {

namespace {

constexpr std::uint32_t alphas = 256;
constexpr std::int32_t bytesOfPixel = 4;
constexpr std::uint32_t allEdges =
    ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
    ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;
constexpr std::int32_t coverPanels = -1;
constexpr std::uint32_t maxLength = 32767; // for each side, in points

/// Creates a file with a black ARGB pixel for every alpha value.
FileDescriptor filePixels() {
    std::array<std::uint32_t, alphas> pixels{};
    for (std::uint32_t alpha = 0; alpha < alphas; ++alpha) {
        pixels.at(alpha) = alpha << 24U;
    }
    FileDescriptor file(memfd_create("nocta-tint", MFD_CLOEXEC));
    if (!file ||
        write(file.get(), pixels.data(), sizeof pixels) != static_cast<ssize_t>(sizeof pixels)) {
        return {};
    }
    return file;
}

} // namespace

/// The layer over one output.
class TintGammaOutput::Layer {
public:
    Layer(TintGammaOutput& owner, DisplayId display, wl_output* output)
        : owner_(owner), display_(display),
          surface_(wl_compositor_create_surface(owner.compositor_)),
          viewport_(wp_viewporter_get_viewport(owner.viewporter_, surface_)),
          role_(zwlr_layer_shell_v1_get_layer_surface(
              owner.shell_, surface_, output, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "nocta-dim")) {
        static constexpr zwlr_layer_surface_v1_listener listener{
            .configure =
                [](void* self, zwlr_layer_surface_v1* role, std::uint32_t serial,
                   std::uint32_t width, std::uint32_t height) {
                    zwlr_layer_surface_v1_ack_configure(role, serial);
                    static_cast<Layer*>(self)->configure(width, height);
                },
            .closed =
                [](void* self, zwlr_layer_surface_v1* /*role*/) {
                    auto& layer = *static_cast<Layer*>(self);
                    layer.isConfigured_ = false;
                    layer.isClosed_ = true;
                }};
        zwlr_layer_surface_v1_add_listener(role_, &listener, this);
        zwlr_layer_surface_v1_set_anchor(role_, allEdges);
        zwlr_layer_surface_v1_set_exclusive_zone(role_, coverPanels);
        auto* const nothing = wl_compositor_create_region(owner.compositor_);
        wl_surface_set_input_region(surface_, nothing);
        wl_region_destroy(nothing);
        wl_surface_commit(surface_);
    }
    Layer(const Layer&) = delete;
    Layer& operator=(const Layer&) = delete;
    ~Layer() {
        zwlr_layer_surface_v1_destroy(role_);
        wp_viewport_destroy(viewport_);
        wl_surface_destroy(surface_);
    }

    /// Whether the compositor has closed the layer. A closed layer cannot be shown again.
    bool isClosed() const { return isClosed_; }

    void setAlpha(std::uint8_t alpha) {
        alpha_ = alpha;
        draw();
    }

private:
    void configure(std::uint32_t width, std::uint32_t height) {
        if (width == 0 || height == 0 || width > maxLength || height > maxLength) {
            const auto bounds = owner_.displays_.displayBounds(display_);
            width = static_cast<std::uint32_t>(bounds.width);
            height = static_cast<std::uint32_t>(bounds.height);
        }
        isConfigured_ = width > 0 && height > 0;
        if (isConfigured_) {
            wp_viewport_set_destination(viewport_, static_cast<std::int32_t>(width),
                                        static_cast<std::int32_t>(height));
            draw();
        }
    }

    void draw() {
        if (isConfigured_) {
            wl_surface_attach(surface_, owner_.pixel(alpha_), 0, 0);
            wl_surface_damage(surface_, 0, 0, maxLength, maxLength);
            wl_surface_commit(surface_);
            owner_.connection_.finishTurn();
        }
    }

    TintGammaOutput& owner_;
    DisplayId display_;
    wl_surface* surface_;
    wp_viewport* viewport_;
    zwlr_layer_surface_v1* role_;
    bool isConfigured_ = false;
    bool isClosed_ = false;
    std::uint8_t alpha_ = 0;
};

TintGammaOutput::TintGammaOutput(WaylandConnection& connection, WaylandDisplays& displays)
    : connection_(connection), displays_(displays),
      compositor_(connection.bindFirst<wl_compositor>(wl_compositor_interface)),
      memory_(connection.bindFirst<wl_shm>(wl_shm_interface)),
      viewporter_(connection.bindFirst<wp_viewporter>(wp_viewporter_interface)),
      shell_(connection.bindFirst<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface)),
      removal_(displays.observeRemoval([this](DisplayId display) {
          layers_.erase(display);
          connection_.finishTurn();
      })) {
    if (compositor_ == nullptr || memory_ == nullptr || viewporter_ == nullptr ||
        shell_ == nullptr) {
        return;
    }
    if (const auto file = filePixels()) {
        pool_ = wl_shm_create_pool(memory_, file.get(), alphas * bytesOfPixel);
    }
}

TintGammaOutput::~TintGammaOutput() {
    TintGammaOutput::displayRestoreColorSyncSettings();
    for (const auto& [alpha, buffer] : pixels_) {
        wl_buffer_destroy(buffer);
    }
    if (pool_ != nullptr) {
        wl_shm_pool_destroy(pool_);
    }
    // In version 1, only some of these interfaces have a destroy request.
    for (void* const global : {static_cast<void*>(compositor_), static_cast<void*>(memory_),
                               static_cast<void*>(shell_)}) {
        if (global != nullptr) {
            wl_proxy_destroy(static_cast<wl_proxy*>(global));
        }
    }
    if (viewporter_ != nullptr) {
        wp_viewporter_destroy(viewporter_);
    }
}

Status TintGammaOutput::setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                                  std::span<const float> green,
                                                  std::span<const float> blue) {
    auto* const output = displays_.outputOf(display);
    if (pool_ == nullptr || output == nullptr || red.empty() || green.empty() || blue.empty()) {
        return statusFailure;
    }
    const auto height = std::clamp(std::max({red.back(), green.back(), blue.back()}), 0.0F, 1.0F);
    const auto alpha = static_cast<std::uint8_t>(std::lround((1 - height) * (alphas - 1)));
    if (alpha == 0) {
        layers_.erase(display); // allows direct scanout of a full-screen program again
    } else {
        auto& layer = layers_[display];
        if (layer == nullptr || layer->isClosed()) {
            layer = std::make_unique<Layer>(*this, display, output);
        }
        layer->setAlpha(alpha);
    }
    connection_.finishTurn();
    return statusSuccess;
}

void TintGammaOutput::displayRestoreColorSyncSettings() {
    if (!layers_.empty()) {
        layers_.clear();
        connection_.synchronize();
    }
}

wl_buffer* TintGammaOutput::pixel(std::uint8_t alpha) {
    auto& buffer = pixels_[alpha];
    if (buffer == nullptr) {
        buffer = wl_shm_pool_create_buffer(pool_, alpha * bytesOfPixel, 1, 1, bytesOfPixel,
                                           WL_SHM_FORMAT_ARGB8888);
    }
    return buffer;
}

} // namespace nocta
