#pragma once

#include "app/SharedInstances.h"

#include <QMenu>

#include <functional>

namespace nocta {

/// The controls of the popover as a menu of the status item, for panels that cannot have a popover
/// beside them.
class StatusMenu final : public QMenu {
public:
    StatusMenu(SharedInstances& instances, std::function<void()> showPreferences);

private:
    void addBrightness(SettingsManager& settings);
    void addWarmth(SettingsManager& settings);
    void addToggle(const QString& text, Setting<bool>& setting);
};

} // namespace nocta
