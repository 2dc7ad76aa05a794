#pragma once

#include "base/Subscription.h"
#include "settings/SettingsManager.h"

#include <QWidget>

#include <functional>

namespace nocta {

/// What the popover shows: the unified brightness, and the way out. Made anew at each opening.
class PopoverContentView final : public QWidget {
public:
    PopoverContentView(SettingsManager& settings, std::function<void()> quit);

private:
    void addBrightness(SettingsManager& settings);
    void addFooter(std::function<void()> quit);

    Cancellables cancellables_;
};

} // namespace nocta
