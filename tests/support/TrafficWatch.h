#pragma once

#include <string>
#include <vector>

namespace nocta {

/// The command under strace, which writes to a file every call of it and of its children that
/// concerns the network, or that could go round such calls.
std::vector<std::string> underWatch(const std::vector<std::string>& command,
                                    const std::string& traceFile);

/// The lines of such a trace that tell of a way out of the session: any address that is no Unix
/// socket, a socket that could have one, and everything sent to a Unix socket other than these.
/// `@` before a path stands for the first byte of an abstract one.
std::vector<std::string> strayTraffic(const std::string& trace,
                                      const std::vector<std::string>& allowedSockets);

} // namespace nocta
