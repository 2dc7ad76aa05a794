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

/// Owns the transfer tables of every active display. It combines dimming, color temperature and
/// saturation: setting any one of them rebuilds and writes the tables of every display.
///
/// A display that is plugged in is not written until the next setter, which adds it to the map of
/// that one value only. Displays stay in the maps while the program runs, so a display that is
/// plugged in again gets its last values. It lives as long as the process.
class GammaController {
public:
    GammaController(DisplayService& displayService, GammaOutput& output);
    GammaController(const GammaController&) = delete;
    GammaController& operator=(const GammaController&) = delete;

    static GammaController& shared();

    /// Reads the list of displays and follows the desktop's screen-parameter notification.
    void start(NotificationCenter& notificationCenter);

    /// 0.0 none – 1.0 black; clamped.
    void setDimming(float amount);

    /// Kelvin; clamped to 1000–10000.
    void setTemperature(std::int64_t kelvin);

    /// 1.0 full color – 0.0 gray; clamped.
    void setSaturation(float amount);

    /// Reads the list of displays again; writes no tables.
    void displaysDidChange();

    /// Writes one display's tables. `invalidTable` if a list does not have 256 entries,
    /// `setTableFailed` if the desktop fails.
    [[nodiscard]] std::optional<GammaError> applyTables(std::span<const float> red,
                                                        std::span<const float> green,
                                                        std::span<const float> blue,
                                                        DisplayId display);

    /// Forgets the dimming, temperature and saturation of every display. Called after the screen
    /// was given back, so that nothing writes them again.
    void clearRecords();

    const std::vector<DisplayInfo>& displays() const { return displays_; }
    const std::map<DisplayId, float>& currentDimming() const { return currentDimming_; }
    const std::map<DisplayId, std::int64_t>& currentTemperature() const {
        return currentTemperature_;
    }
    const std::map<DisplayId, float>& currentSaturation() const { return currentSaturation_; }

private:
    /// What all three setters do. If one display cannot be written, the others still are.
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
