#pragma once

#include "base/NotificationCenter.h"
#include "base/Published.h"
#include "display/DisplayInfo.h"
#include "platform/Displays.h"

#include <optional>
#include <vector>

namespace nocta {

/// The list of active displays. It is empty until the application refreshes it at launch. From then
/// on, the desktop's screen-parameter notification refreshes it. The service exists for the
/// lifetime of the process.
class DisplayService {
public:
    explicit DisplayService(Displays& platform) : platform_(platform) {}
    DisplayService(const DisplayService&) = delete;
    DisplayService& operator=(const DisplayService&) = delete;

    static DisplayService& shared();

    Published<std::vector<DisplayInfo>> displays;

    /// The first display that is flagged as main, or else the first display.
    Published<std::optional<DisplayInfo>> mainDisplay;

    void startObserving(NotificationCenter& notificationCenter);

    /// Reads the desktop's list again and publishes both properties.
    void refreshDisplays();

    /// Handles the screen-parameter notification.
    void displaysDidChange() { refreshDisplays(); }

    /// Reads the list from the desktop without changing its order or publishing it. Returns an
    /// empty list on failure.
    std::vector<DisplayInfo> activeDisplays() const;

private:
    DisplayInfo makeInfo(DisplayId display) const;

    Displays& platform_;
    Cancellables cancellables_;
};

} // namespace nocta
