#pragma once

#include "app/SharedInstances.h"

#include <QWidget>

namespace nocta {

/// The choice of a profile, and the settings that it changes.
class StyleSelectionStep final : public QWidget {
public:
    explicit StyleSelectionStep(SharedInstances& instances);

private:
    QWidget* makeAdjustments(SharedInstances& instances);

    SettingsManager& settings_;
};

} // namespace nocta
