#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <sys/resource.h>

namespace nocta {

/// Returns the peak memory usage of this process, in bytes.
inline std::int64_t peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:")) {
            return 1024 * std::stoll(line.substr(6));
        }
    }
    return 0;
}

/// Resets the peak and returns the current memory usage of this process, in bytes.
inline std::int64_t forgetPeak() {
    std::ofstream("/proc/self/clear_refs") << 5;
    return peakMemory();
}

/// Returns the largest peak memory usage among the child processes that have exited, in bytes.
inline std::int64_t peakMemoryOfChildren() {
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return std::int64_t{1024} * usage.ru_maxrss;
}

} // namespace nocta
