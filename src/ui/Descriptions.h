#pragma once

#include "breaks/BreakRecords.h"
#include "platform/LocationManager.h"
#include "settings/Profile.h"

#include <QString>

#include <cstdint>

namespace nocta {

// Texts that describe a value, in the user's language.

/// A fraction as a whole percentage, truncated: 0.755 is "75%".
QString percentage(double fraction);

/// The state of the break timer in a few words.
QString breakStatusLine(const BreakState& state);

/// A color temperature in a word or two. Its thresholds are not those of `warmthWord`.
QString temperatureDescription(std::int64_t kelvin);

/// A warmth of 0.0–1.0 in one word.
QString warmthWord(double warmth);

/// The completed breaks as a whole percentage of all breaks; 0% if there were none.
QString completionRate(const BreakStatistics& statistics);

/// Where the times of sunrise and sunset come from. Depends only on the setting.
QString sunTimesLine(bool locationEnabled);

/// The number clamped to the range of int, for plural forms.
int countOf(std::int64_t number);

/// How often a profile has breaks.
QString breakSummary(const Profile& profile);

bool isGranted(AuthorizationStatus status);

} // namespace nocta
