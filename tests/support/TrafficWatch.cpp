#include "support/TrafficWatch.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <string_view>

namespace nocta {

namespace {

constexpr std::array outgoing = {"connect(", "sendto(", "sendmsg(", "sendmmsg("};
constexpr std::string_view family = "sa_family=";
constexpr std::string_view unixFamily = "AF_UNIX";
constexpr std::string_view path = "sun_path=";

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

/// strace writes `sun_path="/a"`, or `sun_path=@"a"` for an abstract socket.
std::string asWritten(const std::string& socket) {
    return socket.starts_with('@') ? "@\"" + socket.substr(1) + "\"" : "\"" + socket + "\"";
}

bool isStray(std::string_view line, const std::vector<std::string>& allowedSockets) {
    if (contains(line, "io_uring_setup(") ||
        (contains(line, " socket(") && !contains(line, " socket(AF_UNIX,"))) {
        return true;
    }
    const auto isOutgoing =
        std::ranges::any_of(outgoing, [&](std::string_view call) { return contains(line, call); });
    for (auto rest = line; contains(rest, family);) {
        rest.remove_prefix(rest.find(family) + family.size());
        if (!rest.starts_with(unixFamily)) {
            return true;
        }
        const auto address = rest.substr(0, rest.find('}'));
        const auto isAllowed =
            contains(address, path) &&
            std::ranges::any_of(allowedSockets, [&](const std::string& socket) {
                return address.substr(address.find(path) + path.size()) == asWritten(socket);
            });
        if (isOutgoing && !isAllowed) {
            return true;
        }
    }
    return false;
}

} // namespace

std::vector<std::string> underWatch(const std::vector<std::string>& command,
                                    const std::string& traceFile) {
    std::vector<std::string> watched = {"strace",
                                        "--follow-forks",
                                        "--seccomp-bpf", // otherwise every system call is slow
                                        "--trace=network,io_uring_setup",
                                        "--signal=none",
                                        "--quiet=all",
                                        "--output=" + traceFile};
    watched.insert(watched.end(), command.begin(), command.end());
    return watched;
}

std::vector<std::string> strayTraffic(const std::string& trace,
                                      const std::vector<std::string>& allowedSockets) {
    std::vector<std::string> stray;
    std::istringstream lines(trace);
    for (std::string line; std::getline(lines, line);) {
        if (isStray(line, allowedSockets)) {
            stray.push_back(line);
        }
    }
    return stray;
}

} // namespace nocta
