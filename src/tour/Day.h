#pragma once

#include "tour/Tour.h"

namespace nocta {

/// Plays one day with Nocta, from its first launch until it quits. Every scene checks what it
/// shows.
void spendADay(Tour& tour);

} // namespace nocta
