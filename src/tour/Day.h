#pragma once

#include "tour/Tour.h"

namespace nocta {

/// Simulates one day with Nocta, from its first launch until it quits. Each scene checks the state
/// that it shows.
void simulateDay(Tour& tour);

} // namespace nocta
