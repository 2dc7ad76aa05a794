#pragma once

#include "backends/linux/wayland/WaylandConnection.h"
#include "backends/linux/wayland/WaylandDisplays.h"
#include "platform/GammaOutput.h"

#include <cstdint>
#include <map>
#include <memory>

struct wl_buffer;
struct wl_compositor;
struct wl_shm;
struct wl_shm_pool;
struct wp_viewporter;
struct zwlr_layer_shell_v1;

namespace nocta {

/// Dims each output by covering it with a translucent black layer, for compositors without gamma
/// control. Clicks pass through the layer. The layer's darkness follows the highest level in the
/// tables, so the layer cannot show warmth. It also appears in screenshots. It disappears when the
/// process ends for any reason.
class TintGammaOutput final : public GammaOutput {
public:
    TintGammaOutput(WaylandConnection& connection, WaylandDisplays& displays);
    TintGammaOutput(const TintGammaOutput&) = delete;
    TintGammaOutput& operator=(const TintGammaOutput&) = delete;
    ~TintGammaOutput() override;

    /// Whether the compositor offers layers, and can scale a pixel to the size of an output.
    bool isAvailable() const override { return pool_ != nullptr; }
    Warmth warmth() const override { return Warmth::none; }
    Status setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                     std::span<const float> green,
                                     std::span<const float> blue) override;
    void displayRestoreColorSyncSettings() override;

private:
    class Layer;

    wl_buffer* pixel(std::uint8_t alpha);

    WaylandConnection& connection_;
    WaylandDisplays& displays_;
    wl_compositor* compositor_;
    wl_shm* memory_;
    wp_viewporter* viewporter_;
    zwlr_layer_shell_v1* shell_;
    wl_shm_pool* pool_ = nullptr; ///< a black pixel for every alpha value
    std::map<std::uint8_t, wl_buffer*> pixels_;
    std::map<DisplayId, std::unique_ptr<Layer>> layers_; ///< for each dimmed display
    Subscription removal_;
};

} // namespace nocta
