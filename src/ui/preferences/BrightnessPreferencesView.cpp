#include "ui/preferences/BrightnessPreferencesView.h"

#include "ui/SettingControls.h"
#include "ui/Text.h"
#include "ui/controls/Label.h"

namespace nocta {

BrightnessPreferencesView::BrightnessPreferencesView(SharedInstances& instances) {
    auto* const how = addSection(Text::tr("How It Works"));
    how->addNote(Text::tr("Nocta extends your brightness range beyond what macOS allows. The "
                          "setting applies to all your displays at once."));
    how->add(new Label(Text::tr("On your built-in display:")));
    how->addNote(Text::tr("100% → 50%: Adjusts hardware brightness"));
    how->addNote(Text::tr("49% → 0%: Dims further using a software overlay"));
    how->add(new Label(Text::tr("On external monitors:")));
    how->addNote(Text::tr("100% → 0%: Dims using a software overlay"));

    addSection(Text::tr("Current Level"))->add(makeBrightnessField(instances));

    auto* const safety = addSection(Text::tr("Safety"));
    safety->add(makeToggle(Text::tr("Allow completely black screen"), "allowFullBlackToggle",
                           instances.settingsManager().allowFullBlack));
    safety->addNote(
        Text::tr("When off, a faint glow is kept at minimum so the screen is never fully dark."));
}

} // namespace nocta
