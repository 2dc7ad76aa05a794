#include "ui/onboarding/StyleSelectionStep.h"

#include "ui/Missing.h"
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
    const auto aboutWarmth = Text::tr("The warmth of a style shows when Warmth is set to Manual.");
    for (const auto& profile : instances.builtInProfiles()) {
        auto* const card = new ProfileCard(profile);
        card->setAccessibleDescription(card->accessibleDescription() + QStringLiteral(". ") +
                                       aboutWarmth);
        connect(card, &QAbstractButton::clicked, this,
                [this, &profile] { settings_.applyProfile(profile); });
        column->addWidget(card);
    }
    auto* const note = new Label(aboutWarmth, TextStyle::note);
    note->setAlignment(Qt::AlignHCenter);
    column->addWidget(note);
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
    auto* const warmth = makeWarmthSlider(instances);
    column->addWidget(warmth);
    auto* const ends = new QHBoxLayout;
    ends->addWidget(new Label(Text::tr("Cool"), TextStyle::note));
    ends->addStretch();
    ends->addWidget(new Label(Text::tr("Neutral"), TextStyle::note));
    ends->addStretch();
    ends->addWidget(new Label(Text::tr("Warm"), TextStyle::note));
    column->addLayout(ends);
    column->addWidget(makeNote(noteOnWarmth(instances), {warmth}));

    auto* const grayscale = makeGrayscaleToggle(Text::tr("Eye Relief mode"), instances);
    column->addWidget(grayscale);
    column->addWidget(makeNote(missingForGrayscale(instances), {grayscale}));
    column->addWidget(
        makeToggle(Text::tr("Break reminders"), "breakTimerToggle", settings_.breakTimerEnabled));
    return adjustments;
}

} // namespace nocta
