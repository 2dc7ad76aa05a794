#pragma once

#include <cstdlib>
#include <ctime>
#include <string>

namespace nocta {

/// Changes the time zone of the process, and restores it when destroyed.
class TimeZone {
public:
    /// `zone` is in POSIX format, which needs no database: "CET-1CEST,M3.5.0,M10.5.0/3".
    explicit TimeZone(const char* zone) {
        if (const auto* const before = std::getenv("TZ")) {
            before_ = before;
        }
        setenv("TZ", zone, 1);
        tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;
    ~TimeZone() {
        if (before_.empty()) {
            unsetenv("TZ");
        } else {
            setenv("TZ", before_.c_str(), 1);
        }
        tzset();
    }

private:
    std::string before_;
};

namespace zone {
inline constexpr auto utc = "UTC0";
inline constexpr auto berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
inline constexpr auto newYork = "EST5EDT,M3.2.0,M11.1.0";
inline constexpr auto kolkata = "IST-5:30";
inline constexpr auto kathmandu = "<+0545>-5:45";
inline constexpr auto lordHowe = "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0";
inline constexpr auto chatham = "<+1245>-12:45<+1345>,M9.5.0/2:45,M4.1.0/3:45";
inline constexpr auto lineIslands = "<+14>-14";
inline constexpr auto bakerIsland = "<-12>12";
} // namespace zone

} // namespace nocta
