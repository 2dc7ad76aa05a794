#include "ui/preferences/BreaksPreferencesView.h"

#include "ui/Binding.h"
#include "ui/Descriptions.h"
#include "ui/SettingControls.h"
#include "ui/Text.h"
#include "ui/controls/Label.h"
#include "ui/controls/NumberPicker.h"

#include <array>
#include <cstdint>

namespace nocta {

namespace {
constexpr std::array<std::int64_t, 10> offeredMinutes = {10, 15, 20, 25, 30, 40, 45, 60, 90, 120};
constexpr std::array<std::int64_t, 8> offeredSeconds = {10, 15, 20, 30, 45, 60, 120, 300};
} // namespace

BreaksPreferencesView::BreaksPreferencesView(SharedInstances& instances) {
    auto& settings = instances.settingsManager();

    auto* const interval =
        new NumberPicker(Text::tr("Interval"), settings.breakIntervalMinutes, offeredMinutes,
                         [](std::int64_t minutes) {
                             return Text::tr("Every %n minutes", nullptr, countOf(minutes));
                         });
    interval->setObjectName(QStringLiteral("intervalPicker"));
    auto* const duration = new NumberPicker(
        Text::tr("Break duration"), settings.breakDurationSeconds, offeredSeconds,
        [](std::int64_t seconds) { return Text::tr("%n seconds", nullptr, countOf(seconds)); });
    duration->setObjectName(QStringLiteral("durationPicker"));
    auto* const timer = addSection(Text::tr("Break Timer"));
    timer->add(makeToggle(Text::tr("Enable break reminders"), "breakTimerToggle",
                          settings.breakTimerEnabled));
    timer->addRow(Text::tr("Interval"), interval);
    timer->addRow(Text::tr("Break duration"), duration);

    auto* const smart = addSection(Text::tr("Smart Features"));
    smart->add(makeToggle(Text::tr("Suspend during meetings"), "suspendDuringMeetingsToggle",
                          settings.suspendDuringMeetings));
    smart->addNote(Text::tr("Automatically pauses break reminders when Zoom, Google Meet, or Teams "
                            "is active."));

    auto* const completed = new Label({});
    completed->setObjectName(QStringLiteral("completedBreaks"));
    auto* const skipped = new Label({});
    skipped->setObjectName(QStringLiteral("skippedBreaks"));
    auto* const rate = new Label({});
    rate->setObjectName(QStringLiteral("completionRate"));
    follow(*this, instances.breakTimer().statistics,
           [completed, skipped, rate](const BreakStatistics& statistics) {
               completed->setText(QLocale().toString(qlonglong{statistics.completedBreaks}));
               skipped->setText(QLocale().toString(qlonglong{statistics.skippedBreaks}));
               rate->setText(completionRate(statistics));
           });
    auto* const statistics = addSection(Text::tr("Statistics"));
    statistics->addRow(Text::tr("Breaks completed"), completed);
    statistics->addRow(Text::tr("Breaks skipped"), skipped);
    statistics->addRow(Text::tr("Completion rate"), rate);
}

} // namespace nocta
