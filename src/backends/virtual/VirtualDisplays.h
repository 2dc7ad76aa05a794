#pragma once

#include "backends/virtual/Trace.h"
#include "base/NotificationCenter.h"
#include "platform/Backlight.h"
#include "platform/Displays.h"
#include "platform/GammaOutput.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace nocta {

/// Displays in memory, with their transfer tables and the backlight of the built-in ones. A test
/// can plug and unplug displays at run time and make every operation fail.
class VirtualDisplays final : public Displays, public GammaOutput, public Backlight {
public:
    struct Display {
        DisplayId id = 0;
        bool isBuiltIn = false;
        bool isMain = false;
        std::optional<DisplayMode> mode = DisplayMode{1920, 1080};
        Rect bounds{0, 0, 1920, 1080};
        float backlight = 1.0F;
        bool gammaFails = false;
        /// These tables are empty while the factory tables are in effect.
        std::vector<float> red{};
        std::vector<float> green{};
        std::vector<float> blue{};
    };

    VirtualDisplays(Trace& trace, NotificationCenter& notificationCenter)
        : trace_(trace), notificationCenter_(notificationCenter) {}

    // For tests: what the user does.
    void plug(Display display);
    void unplug(DisplayId id);
    Display& display(DisplayId id);
    const std::vector<Display>& all() const { return displays_; }
    bool takesTables = true;
    Warmth shownWarmth = Warmth::byTables;
    bool listFails = false;
    bool backlightReadFails = false;
    bool backlightWriteFails = false;

    // For the program: the functions of the port.
    Status getActiveDisplayList(std::span<DisplayId> ids, std::uint32_t& count) override;
    Rect displayBounds(DisplayId display) override;
    bool displayIsMain(DisplayId display) override;
    bool displayIsBuiltin(DisplayId display) override;
    std::optional<DisplayMode> displayCopyDisplayMode(DisplayId display) override;
    bool isAvailable() const override { return takesTables; }
    Warmth warmth() const override { return shownWarmth; }
    Status setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                     std::span<const float> green,
                                     std::span<const float> blue) override;
    void displayRestoreColorSyncSettings() override;
    Status getBrightness(DisplayId display, float& level) override;
    Status setBrightness(DisplayId display, float level) override;

private:
    Display* find(DisplayId id);

    Trace& trace_;
    NotificationCenter& notificationCenter_;
    std::vector<Display> displays_;
};

} // namespace nocta
