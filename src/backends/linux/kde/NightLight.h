#pragma once

#include "backends/linux/kde/NightLightProtocol.h"
#include "backends/linux/process/HelperProcess.h"
#include "base/Timer.h"

#include <QDBusConnection>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace nocta {

/// Warms the screen through KDE's Night Light, by making KWin show a constant temperature. A helper
/// process, `nocta-warmth`, saves the user's own settings, changes them, and restores them on
/// request or when this process dies. While no warmth is requested, the user's own settings are in
/// effect.
class NightLight {
public:
    /// The helper saves the user's settings in the file `notes`. The constructor waits for KWin's
    /// answer, but no longer than half a second for each of the two names that KWin's service has
    /// had.
    NightLight(const QDBusConnection& bus, RunLoop& runLoop, std::filesystem::path notes);
    NightLight(const NightLight&) = delete;
    NightLight& operator=(const NightLight&) = delete;
    ~NightLight();

    /// Whether KWin can change the color temperature of the displays.
    bool isAvailable() const { return isAvailable_; }

    /// Shows a temperature in kelvin. The neutral temperature restores the user's settings. If the
    /// temperature changes quickly, some of the values are skipped, but the last one is always
    /// shown.
    void setTemperature(std::int64_t kelvin);

    /// Restores the user's settings immediately.
    void restore();

private:
    void send();
    bool start();
    void receive();
    void complain(const std::string& problem);

    RunLoop& runLoop_;
    std::filesystem::path notes_;
    bool isAvailable_;
    std::optional<NightLightTemperature> wanted_; ///< nullopt for the user's own settings
    std::optional<NightLightTemperature> sent_;   ///< last sent to the running helper
    bool isEnding_ = false;                       ///< the helper was asked to restore the settings
    int replacements_ = 0;
    bool hasComplained_ = false;
    HelperProcess helper_;
    Timer pause_;
};

} // namespace nocta
