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

/// Minutes, wherever the user is offered to put a break off.
inline constexpr std::int64_t snoozeMinutes = 5;

/// The state machine of the break reminders. It counts the work interval down second by second,
/// then the break, and keeps the totals; who shows a break follows its two notifications. It lives
/// as long as the process.
///
/// A second is a tick of a timer, and timers do not run while the machine sleeps: a countdown, a
/// break and a snooze go on after it where they were. A break's record is by the wall clock, so
/// that a completed break during which the machine slept adds the sleep to the total time, and the
/// end of a snooze that is published comes early by it.
///
/// `stop` during a break is no end of the break: it posts nothing and records nothing, and what
/// shows the break stays up until it is dismissed or a later break has ended. And nothing but
/// `stop` and `start` leaves a pause for a meeting, not even the end of the meeting.
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

    /// Only where the state is `Idle`.
    void start();
    void stop();

    /// Only during a break.
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
