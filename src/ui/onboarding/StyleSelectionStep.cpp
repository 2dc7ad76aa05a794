#include "ui/onboarding/StyleSelectionStep.h"

#include "ui/Binding.h"
#include "ui/Colors.h"
#include "ui/Descriptions.h"
#include "ui/Missing.h"
#include "ui/Text.h"
#include "ui/controls/CustomSlider.h"
#include "ui/controls/DisclosureButton.h"
#include "ui/controls/Label.h"
#include "ui/controls/Switch.h"
#include "ui/controls/WarmthSlider.h"
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
        connect(card, &QAbstractButton::clicked, this, [this, &profile] { select(profile); });
        cards_.push_back(card);
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

    auto* const heading = new QHBoxLayout;
    heading->addWidget(new Label(Text::tr("Brightness")));
    heading->addStretch();
    auto* const value = new Label({});
    follow(*value, settings_.unifiedBrightness,
           [value](double brightness) { value->setText(percentage(brightness)); });
    heading->addWidget(value);
    column->addLayout(heading);
    auto* const brightness = new CustomSlider(Text::tr("Brightness"), settings_.unifiedBrightness,
                                              {.lower = 0, .upper = 1}, accentColor);
    brightness->setObjectName(QStringLiteral("brightnessSlider"));
    explain(*brightness, missingForBrightness(instances));
    column->addWidget(brightness);

    column->addWidget(new Label(Text::tr("Warmth")));
    auto* const warmth = new WarmthSlider(Text::tr("Warmth"), settings_.warmthLevel);
    warmth->setObjectName(QStringLiteral("warmthSlider"));
    explain(*warmth, missingForBrightness(instances));
    column->addWidget(warmth);
    auto* const ends = new QHBoxLayout;
    ends->addWidget(new Label(Text::tr("Cool"), TextStyle::note));
    ends->addStretch();
    ends->addWidget(new Label(Text::tr("Neutral"), TextStyle::note));
    ends->addStretch();
    ends->addWidget(new Label(Text::tr("Warm"), TextStyle::note));
    column->addLayout(ends);

    auto* const grayscale = new Switch(Text::tr("Eye Relief mode"));
    grayscale->setObjectName(QStringLiteral("grayscaleToggle"));
    bind(*grayscale, settings_.grayscaleEnabled);
    explain(*grayscale, missingForGrayscale(instances));
    column->addWidget(grayscale);
    auto* const breaks = new Switch(Text::tr("Break reminders"));
    breaks->setObjectName(QStringLiteral("breakTimerToggle"));
    bind(*breaks, settings_.breakTimerEnabled);
    column->addWidget(breaks);
    return adjustments;
}

void StyleSelectionStep::select(const Profile& profile) {
    selectedProfile_ = profile;
    settings_.applyProfile(profile);
    for (auto* const card : cards_) {
        card->setChecked(card->profile() == *selectedProfile_);
    }
}

} // namespace nocta
