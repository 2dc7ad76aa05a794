#pragma once

#include <variant>

namespace nocta {

/// The transition around sunrise; `progress` goes from 0 to 1.
struct Sunrise {
    double progress = 0;
    bool operator==(const Sunrise&) const = default;
};

/// The transition around sunset; `progress` goes from 0 to 1.
struct Sunset {
    double progress = 0;
    bool operator==(const Sunset&) const = default;
};

struct Day {
    bool operator==(const Day&) const = default;
};

struct Night {
    bool operator==(const Night&) const = default;
};

/// The position of the sun, expressed as a part of the day.
using SunPosition = std::variant<Sunrise, Sunset, Day, Night>;

} // namespace nocta
