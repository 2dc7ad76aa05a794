#pragma once

#include "breaks/BreakRecords.h"
#include "platform/LocationManager.h"
#include "settings/Profile.h"

#include <QString>

#include <cstdint>

namespace nocta {

// Functions that describe a value in the user's language.

/// Formats a fraction as a whole percentage, truncated: 0.755 gives "75%".
QString percentage(double fraction);

/// Describes the state of the break timer in a few words.
QString breakStatusLine(const BreakState& state);

/// Returns whether a meeting has paused the countdown.
bool isInMeeting(const BreakState& state);

/// Describes a color temperature in a word or two. The thresholds differ from those of
/// `warmthWord`.
QString temperatureDescription(std::int64_t kelvin);

/// Describes a warmth (0.0–1.0) in one word.
QString warmthWord(double warmth);

/// Formats the completed breaks as a whole percentage of all breaks, or 0% if there were none.
QString completionRate(const BreakStatistics& statistics);

/// Explains where the times of sunrise and sunset come from. The result depends only on the
/// setting.
QString sunTimesLine(bool locationEnabled);

/// Clamps the number to the range of int, for plural forms.
int countOf(std::int64_t number);

/// Describes how often a profile schedules breaks.
QString breakSummary(const Profile& profile);

bool isGranted(AuthorizationStatus status);

} // namespace nocta
