#pragma once

#include "base/NotificationCenter.h"
#include "base/Published.h"
#include "display/DisplayInfo.h"
#include "platform/Displays.h"

#include <optional>
#include <vector>

namespace nocta {

/// The inventory of active displays. Empty until the first refresh, which the application makes
/// at start; from then on it follows the desktop's screen-parameter notification. It lives as long
/// as the process.
class DisplayService {
public:
    explicit DisplayService(Displays& platform) : platform_(platform) {}
    DisplayService(const DisplayService&) = delete;
    DisplayService& operator=(const DisplayService&) = delete;

    static DisplayService& shared();

    Published<std::vector<DisplayInfo>> displays;

    /// The first display flagged as main, else the first of all.
    Published<std::optional<DisplayInfo>> mainDisplay;

    void startObserving(NotificationCenter& notificationCenter);

    /// Reads the desktop's list anew and publishes both properties.
    void refreshDisplays();

    /// The screen-parameter notification arrives here.
    void displaysDidChange() { refreshDisplays(); }

    /// A freshly read list, in the desktop's order; the published one stays as it is. Empty where
    /// the desktop fails.
    std::vector<DisplayInfo> activeDisplays() const;

private:
    DisplayInfo makeInfo(DisplayId display) const;

    Displays& platform_;
    Cancellables cancellables_;
};

} // namespace nocta
