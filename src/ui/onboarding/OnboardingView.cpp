#include "ui/onboarding/OnboardingView.h"

#include "ui/Text.h"
#include "ui/controls/ActionButton.h"
#include "ui/controls/Hairline.h"
#include "ui/controls/Scroller.h"
#include "ui/onboarding/PermissionsStep.h"
#include "ui/onboarding/ReadyStep.h"
#include "ui/onboarding/StyleSelectionStep.h"
#include "ui/onboarding/WelcomeStep.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <initializer_list>
#include <utility>

namespace nocta {

namespace {
constexpr int margin = 16; // points
}

OnboardingView::OnboardingView(SharedInstances& instances, std::function<void()> onComplete)
    : onComplete_(std::move(onComplete)), steps_(new QStackedWidget),
      back_(new ActionButton(Text::tr("Back"))),
      next_(new ActionButton(Text::tr("Continue"), ActionButton::Rank::prominent)) {
    for (QWidget* const step : std::initializer_list<QWidget*>{
             new WelcomeStep, new PermissionsStep(instances), new StyleSelectionStep(instances),
             new ReadyStep(instances)}) {
        steps_->addWidget(new Scroller(step));
    }

    back_->setObjectName(QStringLiteral("backButton"));
    connect(back_, &QPushButton::clicked, this, [this] { goTo(currentStep() - 1); });
    next_->setObjectName(QStringLiteral("continueButton"));
    connect(next_, &QPushButton::clicked, this, [this] { goTo(currentStep() + 1); });

    auto* const navigation = new QHBoxLayout;
    navigation->setContentsMargins(margin, margin / 2, margin, margin / 2);
    navigation->addWidget(back_);
    navigation->addStretch();
    navigation->addWidget(next_);

    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(steps_, 1);
    column->addWidget(new Hairline);
    column->addLayout(navigation);
    goTo(0);
}

/// Moving past the last step completes the onboarding.
void OnboardingView::goTo(int step) {
    if (step == totalSteps()) {
        onComplete_();
        return;
    }
    steps_->setCurrentIndex(step);
    back_->setVisible(step > 0);
    next_->setText(step == totalSteps() - 1 ? Text::tr("Finish") : Text::tr("Continue"));
    next_->setFocus();
}

} // namespace nocta
