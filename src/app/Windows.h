#pragma once

#include "base/Deferred.h"
#include "base/Subscription.h"
#include "platform/Desktop.h"
#include "platform/Views.h"

#include <cstddef>
#include <memory>

namespace nocta {

/// The windows for preferences and updates. Each window is created when it is needed and destroyed
/// when it is closed. `Windows` is a member of `AppDelegate`, which itself owns the onboarding
/// window and the popover.
class Windows {
public:
    Windows(Desktop& desktop, Views& views);
    Windows(const Windows&) = delete;
    Windows& operator=(const Windows&) = delete;

    /// Brings the preferences window to the front.
    void showPreferences();

    /// Starts showing a window for each stage of the updater that has something to show.
    void followUpdater();

private:
    void showUpdateStage();

    Desktop& desktop_;
    Views& views_;
    std::unique_ptr<AppWindow> preferences_;
    std::unique_ptr<AppWindow> update_;
    std::size_t shownStage_ = 0; ///< the index of the updater's stage that `update_` shows
    Deferred stageChanged_;
    Subscription stage_;
};

} // namespace nocta
