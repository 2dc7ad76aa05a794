#pragma once

#include <string>
#include <vector>

namespace nocta {

/// Returns a command that runs `command` under strace. The trace file receives every system call of
/// the command and its children that uses the network or could bypass such calls.
std::vector<std::string> underWatch(const std::vector<std::string>& command,
                                    const std::string& traceFile);

/// Returns the lines of such a trace that show traffic out of the session: any address that is not
/// a Unix socket, the creation of any other kind of socket, and everything sent to a Unix socket
/// that is not among the allowed ones. A leading `@` marks an abstract socket.
std::vector<std::string> strayTraffic(const std::string& trace,
                                      const std::vector<std::string>& allowedSockets);

} // namespace nocta
