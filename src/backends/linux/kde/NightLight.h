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

/// Warms the screen through KDE's Night Light, which KWin keeps at one temperature meanwhile. A
/// helper process, `nocta-warmth`, takes care of the user's own settings: it notes them,
/// changes them, and restores them on request or when this process dies. While no warmth is wanted,
/// the user's own settings are in effect.
class NightLight {
public:
    /// The helper keeps its notes in the file `notes`. Waits for KWin's answer, but not longer than
    /// half a second for each of the names that its service has had.
    NightLight(const QDBusConnection& bus, RunLoop& runLoop, std::filesystem::path notes);
    NightLight(const NightLight&) = delete;
    NightLight& operator=(const NightLight&) = delete;
    ~NightLight();

    /// Whether KWin can change the color temperature of the displays.
    bool isAvailable() const { return isAvailable_; }

    /// Shows a temperature in kelvin. The neutral temperature restores the user's settings. Changes
    /// that follow each other quickly are shown with pauses, the last one always.
    void setTemperature(std::int64_t kelvin);

    /// Restores the user's settings at once.
    void restore();

private:
    void send();
    bool start();
    void receive();
    void complain(const std::string& problem);

    RunLoop& runLoop_;
    std::filesystem::path notes_;
    bool isAvailable_;
    std::optional<NightLightTemperature> wanted_; ///< nothing for the user's own settings
    std::optional<NightLightTemperature> sent_;   ///< to the running helper
    bool isEnding_ = false;                       ///< the helper has been asked to restore
    int replacements_ = 0;
    bool hasComplained_ = false;
    HelperProcess helper_;
    Timer pause_;
};

} // namespace nocta
