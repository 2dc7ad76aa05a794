#pragma once

#include "app/SharedInstances.h"
#include "ui/controls/FormSection.h"
#include "ui/controls/Switch.h"

namespace nocta {

/// The version of Nocta and the settings for updates.
class AboutPreferencesView final : public FormPage {
public:
    explicit AboutPreferencesView(SharedInstances& instances);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void readUpdater();

    Updater& updater_;
    Switch* autoCheck_;
    Switch* autoDownload_;
};

} // namespace nocta
