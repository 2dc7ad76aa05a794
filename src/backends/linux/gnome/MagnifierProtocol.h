#pragma once

namespace nocta {

// The messages between Nocta and `nocta-magnifier`, over a stream socket that the helper gets as
// its standard input and output. The helper starts with one `MagnifierAnswer`. If Nocta then sends
// `magnifierTurnGray`, the helper turns the screen gray. When Nocta closes its side, to restore the
// colors or because it has died, the helper restores the user's settings and exits.

enum class MagnifierAnswer : char {
    colored = 'c',
    gray = 'g',
    unavailable = 'n', ///< the desktop's settings are not installed
};

inline constexpr char magnifierTurnGray = 'g';

} // namespace nocta
