#include "ui/onboarding/ReadyStep.h"

#include "ui/SettingControls.h"
#include "ui/Text.h"
#include "ui/controls/Label.h"
#include "ui/controls/SymbolView.h"
#include "ui/onboarding/StepLayout.h"

#include <QVBoxLayout>

namespace nocta {

namespace {
constexpr int emblemSize = 72; // points
}

ReadyStep::ReadyStep(SharedInstances& instances) : statusBar_(instances.desktop().statusBar) {
    auto* const column =
        makeStepLayout(*this, Text::tr("You're All Set"),
                       Text::tr("Nocta lives in your menu bar — click the eye icon anytime to "
                                "adjust your settings."));
    column->insertWidget(
        0, new SymbolView(QStringLiteral("checkmark.circle.fill"), emblemSize, SymbolColor::accent),
        0, Qt::AlignHCenter);
    column->insertStretch(0);
    auto* const note = new Label(Text::tr("This desktop has no tray for the icon. To adjust your "
                                          "settings, start Nocta again."));
    note->setObjectName(QStringLiteral("comeBackNote"));
    note->setAlignment(Qt::AlignHCenter);
    note->setWordWrap(true);
    comeBackNote_ = note;
    column->insertWidget(column->count() - 1, note); // right below the text of the step
    auto* const launch = makeLaunchAtLoginToggle(Text::tr("Launch Nocta at login"),
                                                 instances.launchAtLoginService());
    launch->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    column->addWidget(launch, 0, Qt::AlignHCenter);
    column->addStretch();
}

/// Asks each time, because a panel may start after Nocta.
void ReadyStep::showEvent(QShowEvent* event) {
    comeBackNote_->setVisible(!statusBar_.isAvailable());
    QWidget::showEvent(event);
}

} // namespace nocta
