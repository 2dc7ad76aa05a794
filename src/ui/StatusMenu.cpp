#include "ui/StatusMenu.h"

#include "ui/Binding.h"
#include "ui/Descriptions.h"
#include "ui/Percent.h"
#include "ui/Text.h"

#include <QActionGroup>

#include <array>
#include <utility>

namespace nocta {

namespace {
constexpr std::array offeredPercents = {100, 75, 50, 25, 0};

/// Makes a group in which at most one item is checked.
QActionGroup* makeChoices(QMenu& menu) {
    auto* const choices = new QActionGroup(&menu);
    choices->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
    return choices;
}
} // namespace

StatusMenu::StatusMenu(SharedInstances& instances, std::function<void()> showPreferences) {
    auto& settings = instances.settingsManager();
    addBrightness(settings);
    addWarmth(settings);
    addToggle(Text::tr("Eye Relief"), settings.grayscaleEnabled);
    addToggle(Text::tr("Break Timer"), settings.breakTimerEnabled);
    addSeparator();
    connect(addAction(Text::tr("Preferences")), &QAction::triggered, this,
            std::move(showPreferences));
    auto& updater = instances.desktop().updater;
    auto* const updates = addAction(Text::tr("Check for Updates"));
    follow(*updates, updater.canCheckForUpdates, [updates](bool can) { updates->setEnabled(can); });
    connect(updates, &QAction::triggered, this, [&updater] { updater.checkForUpdates(); });
    connect(addAction(Text::tr("Quit Nocta")), &QAction::triggered, this,
            [&application = instances.desktop().application] { application.terminate(); });
}

void StatusMenu::addBrightness(SettingsManager& settings) {
    auto* const menu = addMenu(Text::tr("Brightness"));
    auto* const choices = makeChoices(*menu);
    for (const auto percent : offeredPercents) {
        auto* const item = choices->addAction(percentage(fractionOfPercent(percent)));
        menu->addAction(item);
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
    auto* const choices = makeChoices(*menu);
    for (const auto isAutomatic : {true, false}) {
        auto* const item = choices->addAction(isAutomatic ? Text::tr("Auto") : Text::tr("Manual"));
        menu->addAction(item);
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
