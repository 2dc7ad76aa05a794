#pragma once

#include "base/Subscription.h"
#include "display/UnifiedBrightnessApplier.h"
#include "platform/KeyEvents.h"
#include "settings/SettingsManager.h"

namespace nocta {

/// Changes the unified brightness with the keyboard's brightness keys in any application, by a
/// sixteenth per press. It only observes the keys: the system and the focused application get them
/// too. The manager exists for the lifetime of the process.
class ShortcutsManager {
public:
    ShortcutsManager(SettingsManager& settingsManager, UnifiedBrightnessApplier& brightnessApplier,
                     KeyEvents& keyEvents);
    ShortcutsManager(const ShortcutsManager&) = delete;
    ShortcutsManager& operator=(const ShortcutsManager&) = delete;

    static ShortcutsManager& shared();

    /// Installs the event tap if it is not already installed. If the desktop refuses, prints one
    /// line on standard output, and the shortcuts stay off.
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
