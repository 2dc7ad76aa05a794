#pragma once

#include "app/SharedInstances.h"

#include <QPushButton>
#include <QStackedWidget>
#include <QWidget>

#include <functional>

namespace nocta {

/// Guides the user through the first launch in four steps. Every choice takes effect immediately,
/// so closing the window early loses nothing.
class OnboardingView final : public QWidget {
public:
    OnboardingView(SharedInstances& instances, std::function<void()> onComplete);

private:
    int currentStep() const { return steps_->currentIndex(); } ///< 0 to `totalSteps() - 1`
    int totalSteps() const { return steps_->count(); }
    void goTo(int step);

    std::function<void()> onComplete_;
    QStackedWidget* steps_;
    QPushButton* back_;
    QPushButton* next_;
};

} // namespace nocta
