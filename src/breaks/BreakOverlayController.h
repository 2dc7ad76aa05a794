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

/// Covers every screen during a break and removes the covers after it. A break that starts while
/// covers are shown or still fading changes nothing; neither do screens that are added or removed
/// meanwhile. If the break was stopped while its covers were shown, skip and snooze only remove
/// them. It lives as long as the process.
class BreakOverlayController {
public:
    BreakOverlayController(BreakTimer& breakTimer, OverlayWindows& windows,
                           Application& application, Views& views,
                           NotificationCenter& notificationCenter, RunLoop& runLoop);
    BreakOverlayController(const BreakOverlayController&) = delete;
    BreakOverlayController& operator=(const BreakOverlayController&) = delete;

    /// True from the start of a break until the last window has faded out.
    Published<bool> isShowing;

    /// Brings the covers in front of newer windows and gives them the keyboard.
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
    Subscription keyMonitor_;                                                ///< while showing
    Deferred finish_;
    Cancellables cancellables_;
};

} // namespace nocta
