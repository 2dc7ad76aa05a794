#pragma once

#include <cstdint>
#include <string>

namespace nocta {

/// What this process still needs after `confine`.
struct Needs {
    bool network = false;         ///< connections to servers, including the resolver's
    std::int64_t maxFileSize = 0; ///< bytes that it writes to a file that is open
    std::string certificates{};   ///< a file with certificates besides the system's
};

/// Gives up, for the rest of the process's life, everything that is not needed: the file system,
/// other programs and processes, other kinds of sockets, and most of the memory. Files that are
/// open or mapped stay usable. With the network, the process can still read the files of the
/// resolver, the certificates and the libraries. On a kernel without Landlock, the process keeps
/// the user's access to files. Returns false if any other limit cannot be set; the process must
/// exit then. Call it before the first thread starts.
bool confine(const Needs& needs);

} // namespace nocta
