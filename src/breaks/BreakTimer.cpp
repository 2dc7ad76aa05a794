#include "breaks/BreakTimer.h"

#include "base/Checked.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <cmath>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr std::string_view statisticsKey = "breakStatistics";
constexpr Duration tick = 1s;

} // namespace

BreakTimer::BreakTimer(SettingsManager& settingsManager, MeetingDetectorService& meetingDetector,
                       DefaultsStore& userDefaults, UuidSource& uuidSource,
                       NotificationCenter& notificationCenter, RunLoop& runLoop)
    : settingsManager_(settingsManager), meetingDetector_(meetingDetector),
      userDefaults_(userDefaults), uuidSource_(uuidSource), notificationCenter_(notificationCenter),
      runLoop_(runLoop), intervalChange_(runLoop, [this] {
          if (is<Counting>()) {
              beginCounting();
          }
      }) {
    loadStatistics();
    cancellables_.push_back(settingsManager_.breakIntervalMinutes.subscribe(
        [this](std::int64_t /*minutes*/) { intervalChange_.request(); }));
}

void BreakTimer::start() {
    if (is<Idle>()) {
        beginCounting();
    }
}

void BreakTimer::stop() {
    invalidateTimers();
    state.set(Idle{});
}

void BreakTimer::skip() {
    if (is<Active>()) {
        record(&BreakSession::wasSkipped, &BreakStatistics::skippedBreaks);
        endBreak();
        beginCounting();
    }
}

void BreakTimer::snooze(std::int64_t minutes) {
    if (!is<Active>()) {
        return;
    }
    record(&BreakSession::wasSnoozed, &BreakStatistics::snoozedBreaks);
    endBreak();
    const auto duration = std::chrono::minutes(minutes);
    state.set(Snoozed{runLoop_.wallNow() + duration});
    snoozeTimer_.start(runLoop_, duration, Repeat::no, [this] { beginCounting(); });
}

void BreakTimer::beginCounting() {
    const auto& minutes = settingsManager_.breakIntervalMinutes;
    const FaultContext context({minutes.origin()});
    const auto interval = checkedProduct(minutes.get(), 60);
    timeUntilNextBreak.set(static_cast<double>(interval));
    state.set(Counting{timeUntilNextBreak.get()});
    countdownTimer_.start(runLoop_, tick, Repeat::yes, [this] { countdownTick(); });
}

void BreakTimer::countdownTick() {
    if (settingsManager_.suspendDuringMeetings.get() && meetingDetector_.isInMeeting.get()) {
        invalidateTimers();
        state.set(Paused{PauseReason::meeting});
        return;
    }
    timeUntilNextBreak.set(timeUntilNextBreak.get() - 1);
    state.set(Counting{timeUntilNextBreak.get()});
    if (timeUntilNextBreak.get() <= 0) {
        countdownTimer_.invalidate();
        startBreak();
    }
}

void BreakTimer::startBreak() {
    const auto now = runLoop_.wallNow();
    currentSession_ = BreakSession{.id = uuidSource_.makeUuid(), .startTime = now, .endTime = now};
    breakTimeRemaining.set(static_cast<double>(settingsManager_.breakDurationSeconds.get()));
    // Start the timer before notifying observers of the break, because an observer may end the
    // break.
    breakTimer_.start(runLoop_, tick, Repeat::yes, [this] { breakTick(); });
    state.set(Active{breakTimeRemaining.get()});
    notificationCenter_.post(breakDidStartNotification);
}

void BreakTimer::breakTick() {
    breakTimeRemaining.set(breakTimeRemaining.get() - 1);
    state.set(Active{breakTimeRemaining.get()});
    if (breakTimeRemaining.get() <= 0) {
        record(&BreakSession::wasCompleted, &BreakStatistics::completedBreaks);
        endBreak();
        beginCounting();
    }
}

void BreakTimer::record(bool BreakSession::*outcome, std::int64_t BreakStatistics::*counter) {
    if (!currentSession_) {
        return;
    }
    currentSession_->endTime = runLoop_.wallNow();
    (*currentSession_).*outcome = true;
    auto totals = statistics.get();
    const FaultContext context(originsOf(totals));
    totals.totalBreaks = checkedSum(totals.totalBreaks, 1);
    totals.*counter = checkedSum(totals.*counter, 1);
    if (currentSession_->wasCompleted) {
        totals.totalBreakTime +=
            std::chrono::duration<double>(currentSession_->endTime - currentSession_->startTime)
                .count();
    }
    statistics.set(totals);
    saveStatistics();
}

void BreakTimer::endBreak() {
    breakTimer_.invalidate();
    currentSession_.reset();
    notificationCenter_.post(breakDidEndNotification);
}

void BreakTimer::invalidateTimers() {
    countdownTimer_.invalidate();
    breakTimer_.invalidate();
    snoozeTimer_.invalidate();
}

void BreakTimer::loadStatistics() {
    const auto data = userDefaults_.dataForKey(statisticsKey);
    if (!data) {
        return;
    }
    try {
        statistics.set(nlohmann::json::parse(data->bytes).get<BreakStatistics>());
    } catch (const nlohmann::json::exception&) {
        return; // if the totals cannot be read, start from zero
    }
}

void BreakTimer::saveStatistics() {
    if (!std::isfinite(statistics.get().totalBreakTime)) {
        return; // JSON cannot represent it
    }
    const auto text = nlohmann::json(statistics.get()).dump();
    userDefaults_.setObject(DefaultsData{{text.begin(), text.end()}}, statisticsKey);
}

} // namespace nocta
