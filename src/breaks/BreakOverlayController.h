#pragma once

#include "base/Deferred.h"
#include "base/NotificationCenter.h"
#include "base/Published.h"
#include "breaks/BreakTimer.h"
#include "platform/Application.h"
#include "platform/OverlayWindows.h"
#include "platform/Views.h"

#include <cstdint>
#include <map>
#include <memory>

namespace nocta {

/// Covers every screen during a break and takes the covers away after it. A start that comes while
/// covers are shown or still fade changes nothing; so do screens that come and go meanwhile. It
/// lives as long as the process.
class BreakOverlayController {
public:
    BreakOverlayController(BreakTimer& breakTimer, OverlayWindows& windows,
                           Application& application, Views& views,
                           NotificationCenter& notificationCenter, RunLoop& runLoop);
    BreakOverlayController(const BreakOverlayController&) = delete;
    BreakOverlayController& operator=(const BreakOverlayController&) = delete;

    /// From the beginning of a show until the last window has faded.
    Published<bool> isShowing;

private:
    void show();
    void hide();
    void windowHasFaded();

    BreakTimer& breakTimer_;
    OverlayWindows& windows_;
    Application& application_;
    Views& views_;
    std::size_t fading_ = 0;
    std::map<std::uint64_t, std::unique_ptr<OverlayWindow>> overlayWindows_; ///< by screen
    Subscription keyMonitor_;                                                ///< while showing
    Deferred finish_;
    Cancellables cancellables_;
};

} // namespace nocta
