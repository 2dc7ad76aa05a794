#pragma once

#include "base/NotificationCenter.h"
#include "display/DisplayInfo.h"
#include "display/DisplayService.h"
#include "display/GammaTables.h"
#include "platform/GammaOutput.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

namespace nocta {

enum class GammaError { displayNotFound, setTableFailed, invalidTable };

/// Owns the transfer tables of every active display. Dimming, colour temperature and saturation
/// meet here: setting any one of them rebuilds and writes the tables of every display.
///
/// A display that is plugged in is not written until the next setter, which also gives it an
/// entry in that setter's own map only. The maps never shrink while the program runs, so a display
/// that comes back comes back as it was. It lives as long as the process.
class GammaController {
public:
    GammaController(DisplayService& displayService, GammaOutput& output);
    GammaController(const GammaController&) = delete;
    GammaController& operator=(const GammaController&) = delete;

    static GammaController& shared();

    /// Takes the list of displays and follows the desktop's screen-parameter notification.
    void start(NotificationCenter& notificationCenter);

    /// 0.0 none – 1.0 black; clamped.
    void setDimming(float amount);

    /// Kelvin; clamped to 1000–10000.
    void setTemperature(std::int64_t kelvin);

    /// 1.0 full colour – 0.0 gray; clamped.
    void setSaturation(float amount);

    /// Takes the list of displays anew; writes no tables.
    void displaysDidChange();

    /// Writes one display's tables. Lists that do not hold 256 entries are invalid; a desktop that
    /// refuses gives `setTableFailed`.
    [[nodiscard]] std::optional<GammaError> applyTables(std::span<const float> red,
                                                        std::span<const float> green,
                                                        std::span<const float> blue,
                                                        DisplayId display);

    /// Forgets every display's dimming, temperature and saturation, once the screen has been given
    /// back, so that nothing writes them again.
    void clearRecords();

    const std::vector<DisplayInfo>& displays() const { return displays_; }
    const std::map<DisplayId, float>& currentDimming() const { return currentDimming_; }
    const std::map<DisplayId, std::int64_t>& currentTemperature() const {
        return currentTemperature_;
    }
    const std::map<DisplayId, float>& currentSaturation() const { return currentSaturation_; }

private:
    /// The loop of all three setters. A display that cannot be written does not stop the others.
    template <class Value>
    void store(std::map<DisplayId, Value>& values, Value value);

    std::vector<DisplayInfo> displays_;
    std::map<DisplayId, float> currentDimming_;
    std::map<DisplayId, std::int64_t> currentTemperature_;
    std::map<DisplayId, float> currentSaturation_;
    DisplayService& displayService_;
    GammaOutput& output_;
    Cancellables cancellables_;
};

} // namespace nocta
