#pragma once

#include "tour/Tour.h"

namespace nocta {

/// Writes index.html, which shows the day, and trace.jsonl, which has every call that the desktop
/// received with its simulated time, into the tour's folder. False if one cannot be written.
bool writeTour(const Tour& tour);

} // namespace nocta
