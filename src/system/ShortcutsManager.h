#pragma once

#include "base/Subscription.h"
#include "display/UnifiedBrightnessApplier.h"
#include "platform/KeyEvents.h"
#include "settings/SettingsManager.h"

namespace nocta {

/// Changes the unified brightness with the keyboard's brightness keys from any application, by a
/// sixteenth per press. It only listens: the system and the focused application get the keys too.
/// It lives as long as the process.
class ShortcutsManager {
public:
    ShortcutsManager(SettingsManager& settingsManager, UnifiedBrightnessApplier& brightnessApplier,
                     KeyEvents& keyEvents);
    ShortcutsManager(const ShortcutsManager&) = delete;
    ShortcutsManager& operator=(const ShortcutsManager&) = delete;

    static ShortcutsManager& shared();

    /// Installs the event tap, once. If the desktop refuses, it prints one line on standard output,
    /// and the shortcuts stay off.
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
