#pragma once

#include "app/SharedInstances.h"

#include <QWidget>

namespace nocta {

/// A profile to begin with, and the settings that it makes.
class StyleSelectionStep final : public QWidget {
public:
    explicit StyleSelectionStep(SharedInstances& instances);

private:
    QWidget* makeAdjustments(SharedInstances& instances);

    SettingsManager& settings_;
};

} // namespace nocta
