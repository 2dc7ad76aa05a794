#pragma once

#include "tour/Tour.h"

namespace nocta {

/// Writes two files into the tour's folder: index.html shows the day, and trace.jsonl lists every
/// call that the desktop received, with its simulated time. Returns false if a file cannot be
/// written.
bool writeTour(const Tour& tour);

} // namespace nocta
