#pragma once

#include <cstdint>

namespace nocta {

// The messages between Nocta and `nocta-warmth`, over a stream socket that the helper gets as
// its standard input and output. The helper's argument is the file for its notes. Nocta sends
// temperatures, which the helper answers with one `NightLightAnswer` each. When Nocta closes its
// side or dies, the helper restores the user's settings, removes the notes and exits.

using NightLightTemperature = std::uint16_t; ///< kelvin

enum class NightLightAnswer : char {
    done = 'd',
    failed = 'f', ///< the settings cannot be noted or changed
};

} // namespace nocta
