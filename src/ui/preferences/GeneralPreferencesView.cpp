#include "ui/preferences/GeneralPreferencesView.h"

#include "ui/Binding.h"
#include "ui/Missing.h"
#include "ui/SettingControls.h"
#include "ui/Text.h"
#include "ui/controls/ActionButton.h"
#include "ui/controls/SegmentedPicker.h"

namespace nocta {

namespace {

/// Returns the name for screen readers; the picker shows only the symbols.
QString nameOf(MenuBarIcon icon) {
    switch (icon) {
    case MenuBarIcon::leaf:
        return Text::tr("Leaf");
    case MenuBarIcon::sparkles:
        return Text::tr("Sparkles");
    default:
        return Text::tr("Eye");
    }
}

} // namespace

GeneralPreferencesView::GeneralPreferencesView(SharedInstances& instances) {
    auto& settings = instances.settingsManager();

    addSection(Text::tr("Startup"))
        ->add(
            makeLaunchAtLoginToggle(Text::tr("Launch at login"), instances.launchAtLoginService()));

    const std::vector<MenuBarIcon> icons(allMenuBarIcons.begin(), allMenuBarIcons.end());
    std::vector<SegmentLook> looks;
    looks.reserve(icons.size());
    for (const auto icon : icons) {
        looks.push_back({.text = nameOf(icon), .symbol = QString::fromUtf8(rawValue(icon))});
    }
    auto* const picker = new SegmentedPicker(Text::tr("Menu Bar Icon"), looks);
    picker->setObjectName(QStringLiteral("menuBarIconPicker"));
    bind(*picker, settings.menuBarIcon, icons);
    addSection(Text::tr("Menu Bar Icon"))->add(picker);

    auto* const eyeRelief = addSection(Text::tr("Eye Relief"));
    auto* const grayscale = makeGrayscaleToggle(Text::tr("Eye Relief mode"), instances);
    eyeRelief->add(grayscale);
    eyeRelief->add(makeNote(missingForGrayscale(instances), {grayscale}));
    eyeRelief->addNote(Text::tr("Switches your display to black & white, reducing eye strain and "
                                "making apps less appealing."));

    auto* const reset = new ActionButton(Text::tr("Reset to Defaults"));
    reset->setObjectName(QStringLiteral("resetButton"));
    connect(reset, &QPushButton::clicked, this, [&settings] { settings.resetToDefaults(); });
    addSection(Text::tr("Reset"))->add(reset);
}

} // namespace nocta
