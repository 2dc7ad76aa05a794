#pragma once

#include "tour/Tour.h"

namespace nocta {

/// Writes index.html, which tells the day, and trace.jsonl, every call that the desktop received
/// with its simulated time, into the tour's folder. False where one cannot be written.
bool writeTour(const Tour& tour);

} // namespace nocta
