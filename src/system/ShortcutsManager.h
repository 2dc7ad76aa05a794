#pragma once

#include "base/Subscription.h"
#include "display/UnifiedBrightnessApplier.h"
#include "platform/KeyEvents.h"
#include "settings/SettingsManager.h"

namespace nocta {

/// Lets the keyboard's brightness keys drive the unified brightness from any application, a
/// sixteenth a press. Keys are only heard: the system and the focused application get them too.
/// It lives as long as the process.
class ShortcutsManager {
public:
    ShortcutsManager(SettingsManager& settingsManager, UnifiedBrightnessApplier& brightnessApplier,
                     KeyEvents& keyEvents);
    ShortcutsManager(const ShortcutsManager&) = delete;
    ShortcutsManager& operator=(const ShortcutsManager&) = delete;

    static ShortcutsManager& shared();

    /// Installs the event tap, once. Where the desktop refuses, one line says so on standard
    /// output and shortcuts stay off.
    void startMonitoring();

    bool isMonitoring() const { return static_cast<bool>(eventTap_); }

private:
    void handle(const KeyDownEvent& event);

    SettingsManager& settingsManager_;
    UnifiedBrightnessApplier& brightnessApplier_;
    KeyEvents& keyEvents_;
    Subscription eventTap_;
};

} // namespace nocta
