#pragma once

namespace nocta {

// What Nocta and `nocta-magnifier` say to each other over a stream socket, which the helper finds
// as its standard input and output. The helper starts with one `MagnifierAnswer`. If Nocta then
// says `magnifierTurnGray`, it turns the screen gray. When Nocta has nothing more to say, because
// it wants the colours back or has died, the helper puts the user's settings back and ends.

enum class MagnifierAnswer : char {
    colored = 'c',
    gray = 'g',
    unavailable = 'n', ///< the desktop's settings are not installed
};

inline constexpr char magnifierTurnGray = 'g';

} // namespace nocta
