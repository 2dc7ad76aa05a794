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
/// saturation: a change to any of them rebuilds and writes the tables of every display.
///
/// The tables of a newly connected display are not written until a setter is next called. The
/// setter adds the display only to the map of the value that it sets. Displays stay in the maps
/// while the program runs, so a display that is connected again gets its previous values. The
/// controller exists for the lifetime of the process.
class GammaController {
public:
    GammaController(DisplayService& displayService, GammaOutput& output);
    GammaController(const GammaController&) = delete;
    GammaController& operator=(const GammaController&) = delete;

    static GammaController& shared();

    /// Reads the list of displays and observes the desktop's screen-parameter notification.
    void start(NotificationCenter& notificationCenter);

    /// From 0.0 (none) to 1.0 (black); clamped.
    void setDimming(float amount);

    /// In kelvin; clamped to 1000–10000.
    void setTemperature(std::int64_t kelvin);

    /// From 0.0 (gray) to 1.0 (full color); clamped.
    void setSaturation(float amount);

    /// Reads the list of displays again, but does not write any tables.
    void displaysDidChange();

    /// Writes one display's tables. Returns `invalidTable` if a list does not have 256 entries, or
    /// `setTableFailed` if the desktop cannot set the tables.
    [[nodiscard]] std::optional<GammaError> applyTables(std::span<const float> red,
                                                        std::span<const float> green,
                                                        std::span<const float> blue,
                                                        DisplayId display);

    /// Clears the dimming, temperature and saturation of every display. Call it after restoring the
    /// factory tables, so that nothing applies the old values again.
    void clearRecords();

    const std::vector<DisplayInfo>& displays() const { return displays_; }
    const std::map<DisplayId, float>& currentDimming() const { return currentDimming_; }
    const std::map<DisplayId, std::int64_t>& currentTemperature() const {
        return currentTemperature_;
    }
    const std::map<DisplayId, float>& currentSaturation() const { return currentSaturation_; }

private:
    /// The shared part of the three setters. If the tables of one display cannot be written, those
    /// of the other displays still are.
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
