#pragma once

#include "base/RunLoop.h"
#include "base/Subscription.h"
#include "base/TimedAnimation.h"
#include "breaks/BreakTimer.h"
#include "platform/Workspace.h"
#include "settings/SettingsManager.h"

#include <QWidget>

#include <cstdint>
#include <functional>

namespace nocta {

/// The whole seconds of break that are left; 0 outside of a break.
std::int64_t secondsLeft(const BreakState& state);

/// How much of a break of `duration` seconds is over with `remaining` seconds left, in 0.0–1.0. A
/// break without a duration is over from the start.
double breakProgress(double remaining, double duration);

/// The ring that closes as the break goes by, with the seconds that are left in it. A screen reader
/// is told them every ten seconds.
class BreakProgressRing final : public QWidget {
public:
    explicit BreakProgressRing(std::int64_t seconds);

    /// 0.0–1.0.
    double progress() const { return progress_; }
    void setProgress(double progress);
    void setSeconds(std::int64_t seconds);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void announceSeconds();

    std::int64_t seconds_;
    double progress_ = 0;
};

/// What covers a screen during a break.
class BreakOverlayView final : public QWidget {
public:
    BreakOverlayView(BreakTimer& breakTimer, SettingsManager& settings, Workspace& workspace,
                     RunLoop& runLoop, std::function<void()> onSkip,
                     std::function<void()> onSnooze);

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    bool reduceMotion() const { return workspace_.accessibilityDisplayShouldReduceMotion(); }
    void follow(const BreakState& state);
    void moveTo(double progress);

    SettingsManager& settings_;
    Workspace& workspace_;
    RunLoop& runLoop_;
    std::function<void()> onSkip_;
    std::function<void()> onSnooze_;
    BreakProgressRing* ring_;
    TimedAnimation movement_;
    Cancellables cancellables_;
};

} // namespace nocta
