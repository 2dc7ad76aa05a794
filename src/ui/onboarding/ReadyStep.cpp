#include "ui/onboarding/ReadyStep.h"

#include "ui/SettingControls.h"
#include "ui/Text.h"
#include "ui/controls/SymbolView.h"
#include "ui/onboarding/StepLayout.h"

#include <QVBoxLayout>

namespace nocta {

namespace {
constexpr int emblemSize = 72; // points
}

ReadyStep::ReadyStep(LaunchAtLoginService& launchService) {
    auto* const column =
        makeStepLayout(*this, Text::tr("You're All Set"),
                       Text::tr("Nocta lives in your menu bar — click the eye icon anytime to "
                                "adjust your settings."));
    column->insertWidget(
        0, new SymbolView(QStringLiteral("checkmark.circle.fill"), emblemSize, SymbolColor::accent),
        0, Qt::AlignHCenter);
    column->insertStretch(0);
    auto* const launch = makeLaunchAtLoginToggle(Text::tr("Launch Nocta at login"), launchService);
    launch->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    column->addWidget(launch, 0, Qt::AlignHCenter);
    column->addStretch();
}

} // namespace nocta
