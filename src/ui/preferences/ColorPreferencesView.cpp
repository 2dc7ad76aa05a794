#include "ui/preferences/ColorPreferencesView.h"

#include "ui/Binding.h"
#include "ui/Descriptions.h"
#include "ui/Missing.h"
#include "ui/SettingControls.h"
#include "ui/Text.h"
#include "ui/controls/KelvinField.h"
#include "ui/controls/Label.h"
#include "ui/controls/SymbolView.h"

#include <QGridLayout>
#include <QHBoxLayout>

#include <vector>

namespace nocta {

namespace {

constexpr int symbolSize = 16; // points

/// Makes a note that explains why the controls are disabled.
QWidget* makeGrayscaleNote() {
    auto* const note = new QWidget;
    note->setObjectName(QStringLiteral("grayscaleNote"));
    auto* const row = new QHBoxLayout(note);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(new SymbolView(QStringLiteral("info.circle"), symbolSize));
    row->addWidget(
        new Label(Text::tr("Color settings are disabled while Grayscale mode is active."),
                  TextStyle::note),
        1);
    return note;
}

/// Adds a row with the name of the temperature, its value in kelvin, and a description.
KelvinField* addTemperature(QGridLayout& rows, const QString& name,
                            Setting<std::int64_t>& setting) {
    auto* const field = new KelvinField(name, setting);
    auto* const label = new Label(name);
    label->setBuddy(field);
    auto* const description = new Label({}, TextStyle::secondary);
    follow(*description, setting, [description](std::int64_t kelvin) {
        description->setText(temperatureDescription(kelvin));
    });
    const auto row = rows.rowCount();
    rows.addWidget(label, row, 0);
    rows.addWidget(field, row, 1);
    rows.addWidget(description, row, 2);
    rows.setColumnStretch(0, 1);
    return field;
}

/// Adds a line that says where the times of sunrise and sunset come from, and a line that says why
/// they do not come from the user's location.
void addSunTimes(FormSection& section, Switch& location, SharedInstances& instances) {
    auto* const status = new Label({}, TextStyle::note);
    section.add(status);
    auto* const note = makeNote({}, {&location});
    section.add(note);
    const auto show = [&location, note, &instances](const auto& /*changed*/) {
        setNote(*note, noteOnLocation(instances), {&location});
    };
    auto& enabled = instances.settingsManager().locationEnabled;
    follow(*status, enabled, [status](bool on) { status->setText(sunTimesLine(on)); });
    follow(*note, enabled, show);
    follow(*note, instances.locationService().authorizationStatus, show);
    follow(*note, instances.locationService().currentLocation, show);
}

} // namespace

ColorPreferencesView::ColorPreferencesView(SharedInstances& instances) {
    auto& settings = instances.settingsManager();

    auto* const manual = addSection(Text::tr("Manual Warmth"));
    manual->add(makeLevelHeading(Text::tr("Warmth"), "warmthValue", settings.warmthLevel));
    auto* const slider = makeWarmthSlider(instances);
    manual->add(slider);
    manual->add(makeNote(noteOnWarmth(instances), {slider}));
    auto* const note = makeGrayscaleNote();
    manual->add(note);

    auto* const automatic = makeToggle(Text::tr("Auto-adjust based on time"), "autoWarmthToggle",
                                       settings.autoWarmthEnabled);
    auto* const location =
        makeToggle(Text::tr("Use my location"), "locationToggle", settings.locationEnabled);
    auto* const temperatures = new QWidget;
    auto* const rows = new QGridLayout(temperatures);
    rows->setContentsMargins(0, 0, 0, 0);
    auto* const day = addTemperature(*rows, Text::tr("Day"), settings.colorTemperatureDay);
    day->setObjectName(QStringLiteral("dayTemperature"));
    auto* const night = addTemperature(*rows, Text::tr("Night"), settings.colorTemperatureNight);
    night->setObjectName(QStringLiteral("nightTemperature"));

    auto* const temperature = addSection(Text::tr("Color Temperature"));
    temperature->add(automatic);
    temperature->add(makeNote(missingForWarmth(instances), {automatic, day, night}));
    temperature->add(location);
    temperature->add(temperatures);
    temperature->addNote(Text::tr("Nocta transitions smoothly between your day and night "
                                  "temperatures at sunrise and sunset."));
    addSunTimes(*temperature, *location, instances);

    follow(*this, settings.grayscaleEnabled,
           [note, controls =
                      std::vector<QWidget*>{slider, automatic, location, day, night}](bool isGray) {
               note->setVisible(isGray);
               for (auto* const control : controls) {
                   control->setEnabled(!isGray);
               }
           });
}

} // namespace nocta
