#include "ui/StatusMenu.h"

#include "ui/Binding.h"
#include "ui/Descriptions.h"
#include "ui/Percent.h"
#include "ui/Text.h"

#include <array>
#include <utility>

namespace nocta {

namespace {
constexpr std::array offeredPercents = {100, 75, 50, 25, 0};
}

StatusMenu::StatusMenu(SharedInstances& instances, std::function<void()> showPreferences) {
    auto& settings = instances.settingsManager();
    addBrightness(settings);
    addWarmth(settings);
    addToggle(Text::tr("Eye Relief"), settings.grayscaleEnabled);
    addToggle(Text::tr("Break Timer"), settings.breakTimerEnabled);
    addSeparator();
    connect(addAction(Text::tr("Preferences")), &QAction::triggered, this,
            std::move(showPreferences));
    connect(addAction(Text::tr("Quit Nocta")), &QAction::triggered, this,
            [&application = instances.desktop().application] { application.terminate(); });
}

void StatusMenu::addBrightness(SettingsManager& settings) {
    auto* const menu = addMenu(Text::tr("Brightness"));
    for (const auto percent : offeredPercents) {
        auto* const item = menu->addAction(percentage(fractionOfPercent(percent)));
        item->setCheckable(true);
        bind(
            *item, settings.unifiedBrightness,
            [item, percent](double brightness) {
                item->setChecked(brightness >= fractionOfPercent(percent) &&
                                 brightness < fractionOfPercent(percent + 1));
            },
            &QAction::triggered,
            [&settings, percent](bool /*on*/) {
                settings.unifiedBrightness.set(fractionOfPercent(percent));
            });
    }
}

void StatusMenu::addWarmth(SettingsManager& settings) {
    auto* const menu = addMenu(Text::tr("Warmth"));
    for (const auto isAutomatic : {true, false}) {
        auto* const item = menu->addAction(isAutomatic ? Text::tr("Auto") : Text::tr("Manual"));
        item->setCheckable(true);
        bind(
            *item, settings.autoWarmthEnabled,
            [item, isAutomatic](bool enabled) { item->setChecked(enabled == isAutomatic); },
            &QAction::triggered,
            [&settings, isAutomatic](bool /*on*/) { settings.autoWarmthEnabled.set(isAutomatic); });
    }
}

void StatusMenu::addToggle(const QString& text, Setting<bool>& setting) {
    auto* const item = addAction(text);
    item->setCheckable(true);
    bind(*item, setting);
}

} // namespace nocta
