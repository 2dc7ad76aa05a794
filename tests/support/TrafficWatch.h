#pragma once

#include <string>
#include <vector>

namespace nocta {

/// The command under strace, which logs to a file every system call of it and its children that
/// uses the network or could bypass such calls.
std::vector<std::string> underWatch(const std::vector<std::string>& command,
                                    const std::string& traceFile);

/// The lines of such a trace that show traffic out of the session: any address that is not a Unix
/// socket, a socket that could have one, and everything sent to a Unix socket other than these. A
/// leading `@` in a path stands for the first byte of an abstract one.
std::vector<std::string> strayTraffic(const std::string& trace,
                                      const std::vector<std::string>& allowedSockets);

} // namespace nocta
