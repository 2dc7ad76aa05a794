#pragma once

#include "base/NotificationCenter.h"
#include "base/Published.h"
#include "platform/Workspace.h"

#include <optional>

namespace nocta {

/// Publishes which application is in front and whether a window fills the screen. The service
/// exists for the lifetime of the process.
class AppMonitorService {
public:
    AppMonitorService(Workspace& workspace, NotificationCenter& notificationCenter);
    AppMonitorService(const AppMonitorService&) = delete;
    AppMonitorService& operator=(const AppMonitorService&) = delete;

    static AppMonitorService& shared();

    Published<std::optional<RunningApplication>> frontmostApp;
    Published<bool> isFullscreen;

    /// Call this function once.
    void startMonitoring();

    /// Sets `isFullscreen` to whether any window on screen, of any application, has exactly the
    /// size of the main screen. Changes nothing if the desktop cannot list the windows.
    void updateFullscreen();

private:
    Workspace& workspace_;
    NotificationCenter& notificationCenter_;
    Subscription observer_;
    Subscription fullscreenObserver_; ///< for windows that enter full screen
    Subscription exitFullscreenObserver_;
};

} // namespace nocta
