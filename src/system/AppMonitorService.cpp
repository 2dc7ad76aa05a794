#include "system/AppMonitorService.h"

#include <algorithm>

namespace nocta {

AppMonitorService::AppMonitorService(Workspace& workspace, NotificationCenter& notificationCenter)
    : workspace_(workspace), notificationCenter_(notificationCenter) {}

void AppMonitorService::startMonitoring() {
    observer_ = workspace_.observeDidActivateApplication(
        [this](const std::optional<RunningApplication>& application) {
            if (application) {
                frontmostApp.set(application);
                updateFullscreen();
            }
        });
    // The program's own windows post these notifications.
    fullscreenObserver_ = notificationCenter_.observe(windowDidEnterFullScreenNotification,
                                                      [this] { isFullscreen.set(true); });
    exitFullscreenObserver_ = notificationCenter_.observe(windowDidExitFullScreenNotification,
                                                          [this] { isFullscreen.set(false); });
}

void AppMonitorService::updateFullscreen() {
    const auto windows = workspace_.copyWindowInfo();
    if (!windows) {
        return;
    }
    const auto screen = workspace_.mainScreenFrame();
    isFullscreen.set(screen && std::ranges::any_of(*windows, [&](const WindowInfo& window) {
                         return window.width == screen->width && window.height == screen->height;
                     }));
}

} // namespace nocta
