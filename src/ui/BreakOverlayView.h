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

/// The remaining whole seconds of the break; 0 outside of a break.
std::int64_t secondsLeft(const BreakState& state);

/// The elapsed fraction of a break of `duration` seconds with `remaining` seconds left, in 0.0–1.0.
/// It is 1 unless the duration is positive.
double breakProgress(double remaining, double duration);

/// The ring that closes during the break, with the remaining seconds in its middle. It announces
/// them to screen readers every ten seconds.
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
