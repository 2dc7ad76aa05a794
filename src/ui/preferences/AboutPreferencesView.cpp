#include "ui/preferences/AboutPreferencesView.h"

#include "ui/Binding.h"
#include "ui/Missing.h"
#include "ui/SettingControls.h"
#include "ui/Text.h"
#include "ui/controls/ActionButton.h"
#include "ui/controls/Label.h"

namespace nocta {

AboutPreferencesView::AboutPreferencesView(SharedInstances& instances)
    : updater_(instances.desktop().updater),
      autoCheck_(new Switch(Text::tr("Automatically check for updates"))),
      autoDownload_(new Switch(Text::tr("Automatically download updates"))) {
    const auto& bundle = instances.desktop().bundle;
    auto* const version = new Label(
        Text::tr("Version %1 (%2)")
            .arg(QString::fromUtf8(bundle.shortVersionString), QString::fromUtf8(bundle.version)));
    version->setObjectName(QStringLiteral("version"));
    version->setTextInteractionFlags(Qt::TextSelectableByMouse); // for bug reports
    addSection(Text::tr("Nocta"))->add(version);

    autoCheck_->setObjectName(QStringLiteral("autoCheckToggle"));
    connect(autoCheck_, &QAbstractButton::clicked, this,
            [this](bool on) { updater_.setAutomaticallyChecksForUpdates(on); });
    autoDownload_->setObjectName(QStringLiteral("autoDownloadToggle"));
    connect(autoDownload_, &QAbstractButton::clicked, this,
            [this](bool on) { updater_.setAutomaticallyDownloadsUpdates(on); });
    auto* const check = new ActionButton(Text::tr("Check for Updates Now"));
    check->setObjectName(QStringLiteral("checkForUpdatesNowButton"));
    bindToUpdateCheck(*check, instances);

    auto* const updates = addSection(Text::tr("Updates"));
    updates->add(autoCheck_);
    updates->add(autoDownload_);
    updates->add(check);
    updates->add(makeNote(missingForUpdates(instances), {check}));
    // The answer to a permission request changes the switches.
    follow(*this, updater_.stage, [this](const UpdateStage& /*stage*/) { readUpdater(); });
}

/// The updater's settings may have changed while the view was hidden.
void AboutPreferencesView::showEvent(QShowEvent* event) {
    FormPage::showEvent(event);
    readUpdater();
}

void AboutPreferencesView::readUpdater() {
    autoCheck_->setChecked(updater_.automaticallyChecksForUpdates());
    autoDownload_->setChecked(updater_.automaticallyDownloadsUpdates());
}

} // namespace nocta
