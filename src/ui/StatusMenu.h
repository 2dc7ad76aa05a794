#pragma once

#include "app/SharedInstances.h"

#include <QMenu>

#include <functional>

namespace nocta {

/// Shows the controls of the popover as a menu of the status item, for desktop panels that cannot
/// show a popover.
class StatusMenu final : public QMenu {
public:
    StatusMenu(SharedInstances& instances, std::function<void()> showPreferences);

private:
    void addBrightness(SettingsManager& settings);
    void addWarmth(SettingsManager& settings);
    void addToggle(const QString& text, Setting<bool>& setting);
};

} // namespace nocta
