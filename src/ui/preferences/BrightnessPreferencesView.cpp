#include "ui/preferences/BrightnessPreferencesView.h"

#include "ui/Binding.h"
#include "ui/Colors.h"
#include "ui/Descriptions.h"
#include "ui/Missing.h"
#include "ui/Text.h"
#include "ui/controls/CustomSlider.h"
#include "ui/controls/Label.h"
#include "ui/controls/Switch.h"

namespace nocta {

BrightnessPreferencesView::BrightnessPreferencesView(SharedInstances& instances) {
    auto& settings = instances.settingsManager();

    auto* const how = addSection(Text::tr("How It Works"));
    how->addNote(Text::tr("Nocta extends your brightness range beyond what macOS allows. The "
                          "setting applies to all your displays at once."));
    how->add(new Label(Text::tr("On your built-in display:")));
    how->addNote(Text::tr("100% → 50%: Adjusts hardware brightness"));
    how->addNote(Text::tr("49% → 0%: Dims further using a software overlay"));
    how->add(new Label(Text::tr("On external monitors:")));
    how->addNote(Text::tr("100% → 0%: Dims using a software overlay"));

    auto* const level = addSection(Text::tr("Current Level"));
    auto* const value = new Label({});
    follow(*value, settings.unifiedBrightness,
           [value](double brightness) { value->setText(percentage(brightness)); });
    level->addRow(Text::tr("Brightness"), value);
    auto* const slider = new CustomSlider(Text::tr("Brightness"), settings.unifiedBrightness,
                                          {.lower = 0, .upper = 1}, accentColor);
    slider->setObjectName(QStringLiteral("brightnessSlider"));
    explain(*slider, missingForBrightness(instances));
    level->add(slider);

    auto* const fullBlack = new Switch(Text::tr("Allow completely black screen"));
    fullBlack->setObjectName(QStringLiteral("allowFullBlackToggle"));
    bind(*fullBlack, settings.allowFullBlack);
    auto* const safety = addSection(Text::tr("Safety"));
    safety->add(fullBlack);
    safety->addNote(
        Text::tr("When off, a faint glow is kept at minimum so the screen is never fully dark."));
}

} // namespace nocta
