#include "ui/onboarding/StyleSelectionStep.h"

#include "ui/SettingControls.h"
#include "ui/Text.h"
#include "ui/controls/DisclosureButton.h"
#include "ui/controls/Label.h"
#include "ui/onboarding/ProfileCard.h"
#include "ui/onboarding/StepLayout.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace nocta {

namespace {
constexpr int adjustmentSpacing = 2; // points
}

StyleSelectionStep::StyleSelectionStep(SharedInstances& instances)
    : settings_(instances.settingsManager()) {
    auto* const column =
        makeStepLayout(*this, Text::tr("Choose Your Style"),
                       Text::tr("Pick a starting point. You can adjust everything later."));
    for (const auto& profile : instances.builtInProfiles()) {
        auto* const card = new ProfileCard(profile);
        connect(card, &QAbstractButton::clicked, this,
                [this, &profile] { settings_.applyProfile(profile); });
        column->addWidget(card);
    }
    auto* const adjustments = makeAdjustments(instances);
    auto* const disclosure = new DisclosureButton(Text::tr("Adjust settings"), *adjustments);
    disclosure->setObjectName(QStringLiteral("adjustSettingsButton"));
    column->addWidget(disclosure, 0, Qt::AlignHCenter);
    column->addWidget(adjustments);
    column->addStretch();
}

QWidget* StyleSelectionStep::makeAdjustments(SharedInstances& instances) {
    auto* const adjustments = new QWidget;
    auto* const column = new QVBoxLayout(adjustments);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(adjustmentSpacing);

    column->addWidget(makeBrightnessField(instances));

    column->addWidget(new Label(Text::tr("Warmth")));
    column->addWidget(makeWarmthSlider(instances));
    auto* const ends = new QHBoxLayout;
    ends->addWidget(new Label(Text::tr("Cool"), TextStyle::note));
    ends->addStretch();
    ends->addWidget(new Label(Text::tr("Neutral"), TextStyle::note));
    ends->addStretch();
    ends->addWidget(new Label(Text::tr("Warm"), TextStyle::note));
    column->addLayout(ends);

    column->addWidget(makeGrayscaleToggle(Text::tr("Eye Relief mode"), instances));
    column->addWidget(
        makeToggle(Text::tr("Break reminders"), "breakTimerToggle", settings_.breakTimerEnabled));
    return adjustments;
}

} // namespace nocta
