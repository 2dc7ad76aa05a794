#pragma once

#include <string>
#include <vector>

namespace nocta {

/// Returns a command that runs `command` under strace. The trace file records every system call of
/// the command and its children that uses the network. It also records calls that set up io_uring,
/// because io_uring could bypass the trace.
std::vector<std::string> underWatch(const std::vector<std::string>& command,
                                    const std::string& traceFile);

/// Returns the lines of the trace that show traffic outside the session: any address that is not a
/// Unix socket, the creation of any other kind of socket, and anything sent to a Unix socket that
/// is not in the list of allowed sockets. A leading `@` marks an abstract socket.
std::vector<std::string> strayTraffic(const std::string& trace,
                                      const std::vector<std::string>& allowedSockets);

} // namespace nocta
