#pragma once

#include "backends/linux/kde/NightLight.h"
#include "backends/linux/wayland/TintGammaOutput.h"
#include "platform/GammaOutput.h"

#include <memory>
#include <utility>

namespace nocta {

/// Shows tables on KDE, whose compositor does not let programs set them. The layers of
/// `TintGammaOutput` dim the displays, and Night Light warms them. Night Light uses one temperature
/// for all displays: the temperature of the latest tables.
class NightLightGammaOutput final : public GammaOutput {
public:
    NightLightGammaOutput(std::unique_ptr<TintGammaOutput> tint,
                          std::unique_ptr<NightLight> nightLight)
        : tint_(std::move(tint)), nightLight_(std::move(nightLight)) {}

    bool isAvailable() const override { return tint_->isAvailable(); }
    Warmth warmth() const override { return Warmth::byNightLight; }
    Status setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                     std::span<const float> green,
                                     std::span<const float> blue) override;
    void displayRestoreColorSyncSettings() override;

private:
    std::unique_ptr<TintGammaOutput> tint_;
    std::unique_ptr<NightLight> nightLight_;
};

} // namespace nocta
