#pragma once

#include "breaks/BreakRecords.h"
#include "platform/LocationManager.h"
#include "settings/Profile.h"

#include <QString>

#include <cstdint>

namespace nocta {

// What the face says of a value, in the user's language.

/// A fraction as a whole percentage, truncated: 0.755 is "75%".
QString percentage(double fraction);

/// The state of the break timer at a glance.
QString breakStatusLine(const BreakState& state);

/// A colour temperature in a word or two, by thresholds of its own.
QString temperatureDescription(std::int64_t kelvin);

/// A warmth of 0.0–1.0 in one word.
QString warmthWord(double warmth);

/// How many of all breaks were completed, as a whole percentage; 0% of none.
QString completionRate(const BreakStatistics& statistics);

/// Whose times of the sun are used, by the setting alone.
QString sunTimesLine(bool locationEnabled);

/// For a text's number of things: the nearest that there is.
int countOf(std::int64_t number);

/// When a profile calls for breaks.
QString breakSummary(const Profile& profile);

bool isGranted(AuthorizationStatus status);

} // namespace nocta
