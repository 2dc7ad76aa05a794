#include "ui/onboarding/PermissionsStep.h"

#include "ui/Binding.h"
#include "ui/Descriptions.h"
#include "ui/Missing.h"
#include "ui/SettingControls.h"
#include "ui/Text.h"
#include "ui/controls/ActionButton.h"
#include "ui/controls/SymbolView.h"
#include "ui/onboarding/StepLayout.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include <utility>

namespace nocta {

namespace {
constexpr int symbolSize = 32; // points
constexpr int checkSize = 24;
constexpr int spacing = 16;
} // namespace

PermissionsStep::PermissionsStep(SharedInstances& instances) {
    auto* const column =
        makeStepLayout(*this, Text::tr("Permissions"),
                       Text::tr("Nocta needs a few permissions to work properly."));
    auto& service = instances.locationService();
    auto* const location =
        new PermissionRow(QStringLiteral("location"), Text::tr("Location"),
                          Text::tr("For sunrise/sunset calculation"), true, [&service] {
                              service.locationManager().requestWhenInUseAuthorization();
                          });
    follow(*location, service.authorizationStatus,
           [location, &instances](AuthorizationStatus status) {
               location->setGranted(isGranted(status));
               location->setMissing(missingForLocation(instances));
           });
    column->addWidget(location);
    column->addStretch();
    auto* const footer =
        new Label(Text::tr("You can always change these in System Preferences."), TextStyle::note);
    footer->setAlignment(Qt::AlignHCenter);
    column->addWidget(footer);
}

PermissionRow::PermissionRow(const QString& icon, const QString& title, const QString& description,
                             bool isOptional, std::function<void()> action)
    : allow_(new ActionButton(Text::tr("Allow"))),
      granted_(
          new SymbolView(QStringLiteral("checkmark.circle.fill"), checkSize, SymbolColor::accent)),
      missing_(makeNote({}, {})) {
    allow_->setObjectName(QStringLiteral("allowButton"));
    allow_->setAccessibleName(Text::tr("Allow: %1").arg(title));
    connect(allow_, &QPushButton::clicked, this, std::move(action));
    granted_->setObjectName(QStringLiteral("grantedMark"));
    granted_->setAccessibleName(Text::tr("Allowed: %1").arg(title));

    auto* const heading = new QHBoxLayout;
    heading->addWidget(new Label(title, TextStyle::heading));
    if (isOptional) {
        heading->addWidget(new Label(Text::tr("(Optional)"), TextStyle::secondary));
    }
    heading->addStretch();
    auto* const texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addLayout(heading);
    texts->addWidget(new Label(description, TextStyle::paragraph));

    auto* const row = new QGridLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setHorizontalSpacing(spacing);
    row->setColumnStretch(1, 1);
    row->addWidget(new SymbolView(icon, symbolSize, SymbolColor::accent), 0, 0);
    row->addLayout(texts, 0, 1);
    row->addWidget(allow_, 0, 2);
    row->addWidget(granted_, 0, 2); // only one of the two is visible
    row->addWidget(missing_, 1, 1, 1, 2);
}

void PermissionRow::setGranted(bool isGranted) {
    allow_->setVisible(!isGranted);
    granted_->setVisible(isGranted);
}

void PermissionRow::setMissing(const QString& text) {
    setNote(*missing_, text, {allow_});
}

} // namespace nocta
