#include "ui/PopoverContentView.h"

#include "ui/Binding.h"
#include "ui/Descriptions.h"
#include "ui/Missing.h"
#include "ui/SettingControls.h"
#include "ui/Text.h"
#include "ui/controls/FocusRing.h"
#include "ui/controls/FooterButton.h"
#include "ui/controls/Hairline.h"
#include "ui/controls/Label.h"
#include "ui/controls/SegmentedPicker.h"
#include "ui/controls/SymbolView.h"

#include <QHBoxLayout>
#include <QStackedLayout>

#include <utility>

namespace nocta {

namespace {

constexpr int sideMargin = 16 - focusRingRoom; // points
constexpr int topMargin = 16;
constexpr int bottomMargin = 8;
constexpr int sectionSpacing = 8;
constexpr int rowSpacing = 8;
constexpr int symbolSize = 18;
constexpr int pickerWidth = 120;

/// Makes a row for a symbol and its control.
QHBoxLayout* makeRow() {
    auto* const row = new QHBoxLayout;
    row->setContentsMargins(focusRingRoom, 0, 0, 0);
    row->setSpacing(rowSpacing - focusRingRoom);
    return row;
}

/// Keeps the room of a hidden widget free, because the popover does not grow while it is open.
void keepRoom(QWidget& widget) {
    auto policy = widget.sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget.setSizePolicy(policy);
}

} // namespace

PopoverContentView::PopoverContentView(SharedInstances& instances,
                                       std::function<void()> showPreferences)
    : instances_(instances), settings_(instances.settingsManager()) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(sideMargin, topMargin, sideMargin, bottomMargin);
    column->setSpacing(0);
    column->addWidget(makeBrightnessField(instances));
    column->addSpacing(sectionSpacing);
    addWarmth(*column);
    column->addSpacing(sectionSpacing);
    addEyeRelief(*column);
    column->addSpacing(sectionSpacing);
    addBreakTimer(*column);
    column->addStretch();
    column->addSpacing(sectionSpacing / 2);
    auto* const line = new QHBoxLayout;
    line->setContentsMargins(focusRingRoom, 0, focusRingRoom, 0);
    line->addWidget(new Hairline);
    column->addLayout(line);
    column->addSpacing(sectionSpacing / 2);
    addFooter(*column, std::move(showPreferences));
}

void PopoverContentView::addWarmth(QVBoxLayout& column) {
    auto* const heading = makeRow();
    heading->addWidget(new SymbolView(QStringLiteral("paintpalette"), symbolSize));
    heading->addWidget(new Label(Text::tr("Warmth")));
    heading->addStretch();
    auto* const picker = new SegmentedPicker(
        Text::tr("Warmth"), {{.text = Text::tr("Auto")}, {.text = Text::tr("Manual")}});
    picker->setMinimumWidth(pickerWidth);
    picker->setObjectName(QStringLiteral("warmthModePicker"));
    bind(*picker, settings_.autoWarmthEnabled, std::vector{true, false});
    heading->addWidget(picker);
    column.addLayout(heading);

    auto* const caption = new Label(Text::tr("Adjusts with sunset"), TextStyle::secondary);
    auto* const slider = makeWarmthSlider(instances_);
    auto* const choice = new QStackedLayout; // both widgets use the same space
    column.addLayout(choice); // before adding widgets, because it shows them immediately
    choice->addWidget(caption);
    choice->addWidget(slider);
    follow(*caption, settings_.autoWarmthEnabled, [choice, caption, slider](bool isAutomatic) {
        choice->setCurrentWidget(isAutomatic ? static_cast<QWidget*>(caption) : slider);
    });
    column.addWidget(makeNote(noteOnWarmth(instances_), {picker, slider}));
}

void PopoverContentView::addEyeRelief(QVBoxLayout& column) {
    auto* const row = makeRow();
    row->addWidget(new SymbolView(QStringLiteral("circle.lefthalf.filled"), symbolSize));
    auto* const toggle = makeGrayscaleToggle(Text::tr("Eye Relief"), instances_);
    row->addWidget(toggle);
    column.addLayout(row);
    column.addWidget(makeNote(missingForGrayscale(instances_), {toggle}));
}

void PopoverContentView::addBreakTimer(QVBoxLayout& column) {
    auto* const toggle =
        makeToggle(Text::tr("Break Timer"), "breakTimerToggle", settings_.breakTimerEnabled);
    column.addWidget(toggle);
    auto* const status = new Label({}, TextStyle::secondary);
    status->setObjectName(QStringLiteral("breakStatus"));
    column.addWidget(status);
    auto* const note =
        new Label(Text::tr("Turn Break Timer off and on to start again."), TextStyle::note);
    keepRoom(*note);
    column.addWidget(note);
    follow(*status, instances_.breakTimer().state,
           [this, toggle, status, note](const BreakState& state) {
               const FaultContext context({settings_.breakIntervalMinutes.origin(),
                                           settings_.breakDurationSeconds.origin()});
               status->setText(breakStatusLine(state));
               note->setVisible(isInMeeting(state));
               toggle->setAccessibleDescription(note->isHidden() ? QString() : note->text());
           });
}

void PopoverContentView::addFooter(QVBoxLayout& column, std::function<void()> showPreferences) {
    auto* const preferences = new FooterButton(QStringLiteral("gear"), Text::tr("Preferences"));
    preferences->setObjectName(QStringLiteral("preferencesButton"));
    connect(preferences, &QPushButton::clicked, this, std::move(showPreferences));

    auto* const updates = new FooterButton(QStringLiteral("arrow.triangle.2.circlepath"),
                                           Text::tr("Check for Updates"));
    updates->setObjectName(QStringLiteral("checkForUpdatesButton"));
    updates->setToolTip(missingForUpdates(instances_));
    bindToUpdateCheck(*updates, instances_);

    auto* const quit = new FooterButton(QStringLiteral("power"), Text::tr("Quit Nocta"));
    quit->setObjectName(QStringLiteral("quitButton"));
    connect(quit, &QPushButton::clicked, this,
            [&application = instances_.desktop().application] { application.terminate(); });

    auto* const footer = new QHBoxLayout;
    footer->setSpacing(rowSpacing / 2);
    footer->addWidget(preferences);
    footer->addStretch();
    footer->addWidget(updates);
    footer->addStretch();
    footer->addWidget(quit);
    column.addLayout(footer);
}

} // namespace nocta
