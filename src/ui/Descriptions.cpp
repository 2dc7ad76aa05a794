#include "ui/Descriptions.h"

#include "base/Checked.h"
#include "ui/Percent.h"
#include "ui/Text.h"

#include <algorithm>
#include <array>
#include <limits>
#include <type_traits>
#include <variant>

namespace nocta {

namespace {

constexpr std::int64_t secondsOfMinute = 60;

// `temperatures` and `warmths` have different thresholds on purpose: the first describes a
// temperature, the second the position of a slider.
struct Below {
    double limit;
    const char* text;
};

constexpr std::array temperatures = {
    Below{3000, QT_TRANSLATE_NOOP("Nocta", "Candlelight")},
    Below{3800, QT_TRANSLATE_NOOP("Nocta", "Very warm")},
    Below{4800, QT_TRANSLATE_NOOP("Nocta", "Warm")},
    Below{5800, QT_TRANSLATE_NOOP("Nocta", "Slightly warm")},
};

constexpr std::array warmths = {
    Below{0.33, QT_TRANSLATE_NOOP("Nocta", "Cool")},
    Below{0.66, QT_TRANSLATE_NOOP("Nocta", "Neutral")},
};

template <class Table>
QString firstBelow(const Table& table, double value, const char* otherwise) {
    for (const auto& [limit, text] : table) {
        if (value < limit) {
            return Text::tr(text);
        }
    }
    return Text::tr(otherwise);
}

QString timeLeft(double time) {
    const auto seconds = truncated(time);
    return seconds < secondsOfMinute ? Text::tr("%1s left").arg(seconds)
                                     : Text::tr("%1m left").arg(seconds / secondsOfMinute);
}

} // namespace

QString percentage(double fraction) {
    return Text::tr("%1%").arg(wholePercent(fraction));
}

QString breakStatusLine(const BreakState& state) {
    return std::visit(
        [](const auto& value) {
            using State = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<State, Counting>) {
                return timeLeft(value.timeUntilBreak);
            } else if constexpr (std::is_same_v<State, Active>) {
                return Text::tr("Break: %1s").arg(truncated(value.timeRemaining));
            } else if constexpr (std::is_same_v<State, Paused>) {
                return value.reason == PauseReason::meeting ? Text::tr("In meeting")
                                                            : Text::tr("Paused");
            } else if constexpr (std::is_same_v<State, Snoozed>) {
                return Text::tr("Snoozed");
            } else {
                return Text::tr("Off");
            }
        },
        state);
}

bool isInMeeting(const BreakState& state) {
    const auto* const paused = std::get_if<Paused>(&state);
    return paused != nullptr && paused->reason == PauseReason::meeting;
}

QString temperatureDescription(std::int64_t kelvin) {
    return firstBelow(temperatures, static_cast<double>(kelvin), "Neutral");
}

QString warmthWord(double warmth) {
    return firstBelow(warmths, warmth, "Warm");
}

QString completionRate(const BreakStatistics& statistics) {
    const FaultContext context(originsOf(statistics));
    return percentage(statistics.totalBreaks == 0
                          ? 0
                          : static_cast<double>(statistics.completedBreaks) /
                                static_cast<double>(statistics.totalBreaks));
}

QString sunTimesLine(bool locationEnabled) {
    return locationEnabled ? Text::tr("Using your location for accurate sunrise/sunset times.")
                           : Text::tr("Using default times (6:30 AM / 6:30 PM).");
}

int countOf(std::int64_t number) {
    return static_cast<int>(std::clamp<std::int64_t>(number, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

QString breakSummary(const Profile& profile) {
    return profile.breakTimerEnabled
               ? Text::tr("Every %n min", nullptr, countOf(profile.breakInterval))
               : Text::tr("Off");
}

bool isGranted(AuthorizationStatus status) {
    return status == AuthorizationStatus::authorized ||
           status == AuthorizationStatus::authorizedWhenInUse;
}

} // namespace nocta
