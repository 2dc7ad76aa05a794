#pragma once

namespace nocta {

// The messages between Nocta and `nocta-ramps`, over a stream socket that the helper gets as its
// standard input and output. The helper's arguments are the file for its notes and Nocta's name on
// the session bus. Nocta sends commands, and the helper answers each except the last one with one
// `RampKeeperAnswer`. When Nocta closes its side or dies, the helper restores all ramps in its
// notes, removes the notes and exits.

enum class RampKeeperCommand : char {
    /// Restores what an earlier helper has left, and then notes the ramps of all active CRTCs.
    begin = 'b',
    /// Replaces a helper that has died: its notes stay valid.
    takeOver = 't',
    /// Notes the ramps of CRTCs that have become active.
    update = 'u',
    /// Nocta ends its control of the screen. It has sent its last ramps.
    end = 'e',
};

enum class RampKeeperAnswer : char {
    ready = 'r',  ///< the file contains the notes
    failed = 'f', ///< the ramps cannot be read or saved, so they must not be changed
};

} // namespace nocta
