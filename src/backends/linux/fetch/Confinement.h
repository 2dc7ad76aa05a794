#pragma once

#include <cstdint>
#include <string>

namespace nocta {

/// What this process still needs after `confine`.
struct Needs {
    bool network = false;         ///< connections to servers, including the resolver's
    int folder = -1;              ///< an open folder whose files it reads
    bool writesFolder = false;    ///< it also creates and deletes files there
    std::int64_t maxFileSize = 0; ///< bytes that it writes to a file
    std::int64_t maxMapped = 0;   ///< bytes of files that it maps, besides libraries
    std::string certificates{};   ///< a file with certificates besides the system's
};

/// Gives up, for the rest of the process's life, everything that is not needed: most of the file
/// system, other programs and processes, other kinds of sockets, and most of the memory. On kernels
/// without Landlock, the process keeps the user's access to files. Returns false if any other limit
/// cannot be set; the process must exit then. Call it before the first thread starts.
bool confine(const Needs& needs);

} // namespace nocta
