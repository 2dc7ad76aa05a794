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

/// Returns the remaining whole seconds of the break, or 0 if no break is active.
std::int64_t secondsLeft(const BreakState& state);

/// Returns the elapsed fraction (0.0–1.0) of a break of `duration` seconds that has `remaining`
/// seconds left. Returns 1 if the duration is not positive.
double breakProgress(double remaining, double duration);

/// The ring that fills up during the break, with the remaining seconds in its center. It announces
/// the remaining time to screen readers every ten seconds.
class BreakProgressRing final : public QWidget {
public:
    explicit BreakProgressRing(std::int64_t seconds);

    /// In 0.0–1.0.
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

/// The view that covers a screen during a break.
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
