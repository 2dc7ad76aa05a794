#include "ui/onboarding/WelcomeStep.h"

#include "ui/Text.h"
#include "ui/controls/Label.h"
#include "ui/controls/SymbolView.h"
#include "ui/onboarding/StepLayout.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace nocta {

namespace {
constexpr int emblemSize = 72; // points
constexpr int symbolSize = 32;
constexpr int rowSpacing = 16;
constexpr int rowPadding = 8;
} // namespace

WelcomeStep::WelcomeStep() {
    auto* const column =
        makeStepLayout(*this, Text::tr("Welcome to Nocta"),
                       Text::tr("Take care of your eyes, without thinking about it."));
    auto* const emblem = new SymbolView(QStringLiteral("eye"), emblemSize, SymbolColor::accent);
    column->insertWidget(0, emblem, 0, Qt::AlignHCenter);
    column->addStretch();
    column->addWidget(new FeatureRow(QStringLiteral("sun.max"), Text::tr("Extended Brightness"),
                                     Text::tr("Go dimmer than macOS allows")));
    column->addWidget(new FeatureRow(QStringLiteral("thermometer.sun"),
                                     Text::tr("Automatic Warmth at Sunset"),
                                     Text::tr("Your screen adapts to the time of day")));
    column->addWidget(new FeatureRow(QStringLiteral("clock"), Text::tr("Smart Break Reminders"),
                                     Text::tr("Customizable intervals, pauses during meetings")));
    column->addStretch(2);
}

FeatureRow::FeatureRow(const QString& icon, const QString& title, const QString& description) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, rowPadding, 0, rowPadding);
    row->setSpacing(rowSpacing);
    row->addWidget(new SymbolView(icon, symbolSize, SymbolColor::accent));
    auto* const texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(new Label(title, TextStyle::heading));
    texts->addWidget(new Label(description, TextStyle::paragraph));
    row->addLayout(texts, 1);
}

} // namespace nocta
