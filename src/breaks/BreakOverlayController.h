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
/// covers are shown or still fade changes nothing; so do screens that come and go meanwhile. Where
/// the break was stopped under its covers, skipping and snoozing take them away and do nothing
/// else. It lives as long as the process.
class BreakOverlayController {
public:
    BreakOverlayController(BreakTimer& breakTimer, OverlayWindows& windows,
                           Application& application, Views& views,
                           NotificationCenter& notificationCenter, RunLoop& runLoop);
    BreakOverlayController(const BreakOverlayController&) = delete;
    BreakOverlayController& operator=(const BreakOverlayController&) = delete;

    /// From the beginning of a show until the last window has faded.
    Published<bool> isShowing;

    /// Brings the covers in front of windows that have come since, and gives them the keyboard.
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
    std::size_t fading_ = 0; ///< windows that still fade
    std::map<std::uint64_t, std::unique_ptr<OverlayWindow>> overlayWindows_; ///< by screen
    Subscription keyMonitor_;                                                ///< while showing
    Deferred finish_;
    Cancellables cancellables_;
};

} // namespace nocta
