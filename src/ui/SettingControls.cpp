#include "ui/SettingControls.h"

#include "ui/Binding.h"
#include "ui/Colors.h"
#include "ui/Descriptions.h"
#include "ui/Missing.h"
#include "ui/Text.h"
#include "ui/controls/CustomSlider.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace nocta {

namespace {

void describe(const std::vector<QWidget*>& controls, const QString& text) {
    for (auto* const control : controls) {
        control->setAccessibleDescription(text);
    }
}

} // namespace

Label* makeNote(const QString& text, const std::vector<QWidget*>& controls) {
    auto* const note = new Label(text, TextStyle::note);
    if (text.isEmpty()) {
        note->hide();
    }
    describe(controls, text);
    return note;
}

void setNote(Label& note, const QString& text, const std::vector<QWidget*>& controls) {
    note.setText(text);
    note.setVisible(!text.isEmpty());
    describe(controls, text);
}

QWidget* makeLevelHeading(const QString& name, const char* identifier, Setting<double>& setting) {
    auto* const heading = new QWidget;
    auto* const row = new QHBoxLayout(heading);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(new Label(name));
    row->addStretch();
    auto* const value = new Label({});
    value->setObjectName(QLatin1String(identifier));
    follow(*value, setting, [value, &setting](double level) {
        const FaultContext context({setting.origin()});
        value->setText(percentage(level));
    });
    row->addWidget(value);
    return heading;
}

QWidget* makeBrightnessField(SharedInstances& instances) {
    auto& brightness = instances.settingsManager().unifiedBrightness;
    auto* const field = new QWidget;
    auto* const column = new QVBoxLayout(field);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeLevelHeading(Text::tr("Brightness"), "brightnessValue", brightness));
    auto* const slider =
        new CustomSlider(Text::tr("Brightness"), brightness, {.lower = 0, .upper = 1}, accentColor);
    slider->setObjectName(QStringLiteral("brightnessSlider"));
    column->addWidget(slider);
    column->addWidget(makeNote(missingForBrightness(instances), {slider}));
    return field;
}

WarmthSlider* makeWarmthSlider(SharedInstances& instances) {
    auto* const slider =
        new WarmthSlider(Text::tr("Warmth"), instances.settingsManager().warmthLevel);
    slider->setObjectName(QStringLiteral("warmthSlider"));
    return slider;
}

Switch* makeToggle(const QString& text, const char* identifier, Setting<bool>& setting) {
    auto* const toggle = new Switch(text);
    toggle->setObjectName(QLatin1String(identifier));
    bind(*toggle, setting);
    return toggle;
}

Switch* makeGrayscaleToggle(const QString& text, SharedInstances& instances) {
    return makeToggle(text, "grayscaleToggle", instances.settingsManager().grayscaleEnabled);
}

Switch* makeLaunchAtLoginToggle(const QString& text, LaunchAtLoginService& service) {
    auto* const toggle = new Switch(text);
    toggle->setObjectName(QStringLiteral("launchAtLoginToggle"));
    bind(*toggle, service.isEnabled,
         [&service](bool on) { on ? service.enable() : service.disable(); });
    return toggle;
}

void bindToUpdateCheck(QAbstractButton& button, SharedInstances& instances) {
    auto& updater = instances.desktop().updater;
    follow(button, updater.canCheckForUpdates, [&button](bool can) { button.setEnabled(can); });
    QObject::connect(&button, &QAbstractButton::clicked, &button,
                     [&updater] { updater.checkForUpdates(); });
}

} // namespace nocta
