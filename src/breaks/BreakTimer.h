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

/// The length of a snooze in minutes, wherever the user can snooze a break.
inline constexpr std::int64_t snoozeMinutes = 5;

/// The state machine of the break reminders. It counts down the work interval and then the break,
/// second by second, and keeps the totals. Code that shows a break observes the two notifications
/// above. The timer exists for the lifetime of the process.
///
/// It counts timer ticks, and timers do not run while the machine sleeps, so a countdown, a break
/// or a snooze resumes where it left off when the machine wakes. Records use the wall clock: if the
/// machine sleeps during a break that the user then completes, the total break time includes the
/// time asleep. If the machine sleeps during a snooze, the snooze ends later than the published
/// time.
///
/// Calling `stop` during a break does not end the break: it posts no notification and records
/// nothing, and the covers stay up until the user dismisses them or a later break ends. The end of
/// a meeting does not resume a countdown that the meeting paused; call `stop` and then `start` to
/// resume it.
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

    /// Does nothing if the state is not `Idle`.
    void start();
    void stop();

    /// `skip` and `snooze` do nothing if no break is active.
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
