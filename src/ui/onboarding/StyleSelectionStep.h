#pragma once

#include "app/SharedInstances.h"

#include <QWidget>

namespace nocta {

/// Lets the user choose a profile, and shows the settings that the profile changes.
class StyleSelectionStep final : public QWidget {
public:
    explicit StyleSelectionStep(SharedInstances& instances);

private:
    QWidget* makeAdjustments(SharedInstances& instances);

    SettingsManager& settings_;
};

} // namespace nocta
