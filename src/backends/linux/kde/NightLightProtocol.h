#pragma once

#include <cstdint>

namespace nocta {

// Nocta and `nocta-warmth` exchange messages over a stream socket, which is the helper's standard
// input and output. The helper's argument is the path of its notes file. Nocta sends temperatures,
// and the helper answers each of them with one `NightLightAnswer`. When Nocta closes its end of the
// socket or dies, the helper restores the user's settings, removes the notes file and exits.

using NightLightTemperature = std::uint16_t; ///< kelvin

enum class NightLightAnswer : char {
    done = 'd',
    failed = 'f', ///< the settings cannot be saved or changed
};

} // namespace nocta
