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

/// Covers every screen during a break and removes the covers afterward. While covers are shown or
/// are still fading, it ignores the start of another break and screens that are added or removed.
/// If the break was stopped while its covers were shown, skip and snooze only remove the covers.
/// The controller exists for the lifetime of the process.
class BreakOverlayController {
public:
    BreakOverlayController(BreakTimer& breakTimer, OverlayWindows& windows,
                           Application& application, Views& views,
                           NotificationCenter& notificationCenter, RunLoop& runLoop);
    BreakOverlayController(const BreakOverlayController&) = delete;
    BreakOverlayController& operator=(const BreakOverlayController&) = delete;

    /// True from the start of a break until the last window has faded out.
    Published<bool> isShowing;

    /// Brings the covers in front of newer windows and gives them keyboard focus.
    void orderFront();

private:
    void show();
    void skip();
    void snooze();
    void hideWithoutBreak();
    void hide();
    void windowHasFaded();

    BreakTimer& breakTimer_;
    OverlayWindows& windows_;
    Application& application_;
    Views& views_;
    bool isFading_ = false;
    std::size_t fading_ = 0; ///< number of windows that are still fading
    std::map<std::uint64_t, std::unique_ptr<OverlayWindow>> overlayWindows_; ///< by screen
    Subscription keyMonitor_; ///< while covers are shown
    Deferred finish_;
    Cancellables cancellables_;
};

} // namespace nocta
