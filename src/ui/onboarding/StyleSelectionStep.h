#pragma once

#include "app/SharedInstances.h"

#include <QWidget>

#include <optional>
#include <vector>

namespace nocta {

class ProfileCard;

/// A profile to begin with, and the settings that it makes.
class StyleSelectionStep final : public QWidget {
public:
    explicit StyleSelectionStep(SharedInstances& instances);

private:
    QWidget* makeAdjustments(SharedInstances& instances);
    void select(const Profile& profile);

    SettingsManager& settings_;
    std::optional<Profile> selectedProfile_;
    std::vector<ProfileCard*> cards_;
};

} // namespace nocta
