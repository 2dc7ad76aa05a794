#pragma once

#include "base/Deferred.h"
#include "base/NotificationCenter.h"
#include "base/Published.h"
#include "base/RunLoop.h"
#include "base/Timer.h"
#include "breaks/BreakRecords.h"
#include "breaks/MeetingDetectorService.h"
#include "platform/DefaultsStore.h"
#include "platform/UuidSource.h"
#include "settings/SettingsManager.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace nocta {

inline constexpr std::string_view breakDidStartNotification = "NoctaBreakDidStart";
inline constexpr std::string_view breakDidEndNotification = "NoctaBreakDidEnd";

/// Minutes, wherever the user can snooze a break.
inline constexpr std::int64_t snoozeMinutes = 5;

/// The state machine of the break reminders. It counts down the work interval second by second,
/// then the break, and keeps the totals. Code that shows a break observes the two notifications. It
/// lives as long as the process.
///
/// A second is a tick of a timer, and timers do not run while the machine sleeps: a countdown, a
/// break and a snooze continue afterward where they were. Records use the wall clock, so if the
/// machine sleeps during a break that is then completed, the sleep is added to the total time. If
/// it sleeps during a snooze, the published end of the snooze is too early by that time.
///
/// `stop` during a break does not end the break: it posts nothing and records nothing, and the
/// covers stay up until the user dismisses them or a later break ends. Only `stop` followed by
/// `start` leaves a pause for a meeting; the end of the meeting does not.
class BreakTimer {
public:
    BreakTimer(SettingsManager& settingsManager, MeetingDetectorService& meetingDetector,
               DefaultsStore& userDefaults, UuidSource& uuidSource,
               NotificationCenter& notificationCenter, RunLoop& runLoop);
    BreakTimer(const BreakTimer&) = delete;
    BreakTimer& operator=(const BreakTimer&) = delete;

    static BreakTimer& shared();

    Published<BreakState> state{Idle{}};
    Published<double> timeUntilNextBreak;  ///< seconds
    Published<double> breakTimeRemaining;  ///< seconds
    Published<BreakStatistics> statistics; ///< also in the defaults store, as "breakStatistics"

    /// Does nothing unless the state is `Idle`.
    void start();
    void stop();

    /// These do nothing unless a break is active.
    void skip();
    void snooze(std::int64_t minutes);

private:
    template <class State>
    bool is() const {
        return std::holds_alternative<State>(state.get());
    }

    void beginCounting();
    void countdownTick();
    void startBreak();
    void breakTick();
    void record(bool BreakSession::*outcome, std::int64_t BreakStatistics::*counter);
    void endBreak();
    void invalidateTimers();
    void loadStatistics();
    void saveStatistics();

    SettingsManager& settingsManager_;
    MeetingDetectorService& meetingDetector_;
    DefaultsStore& userDefaults_;
    UuidSource& uuidSource_;
    NotificationCenter& notificationCenter_;
    RunLoop& runLoop_;
    std::optional<BreakSession> currentSession_;
    Deferred intervalChange_;
    Timer countdownTimer_;
    Timer breakTimer_;
    Timer snoozeTimer_;
    Cancellables cancellables_;
};

} // namespace nocta
