#pragma once

#include "color/SunPosition.h"

#include <ostream>

namespace nocta {

// GoogleTest prints these texts in the messages of failed expectations.

inline void PrintTo(const Sunrise& sunrise, std::ostream* stream) {
    *stream << "sunrise, " << sunrise.progress << " of the span";
}
inline void PrintTo(const Sunset& sunset, std::ostream* stream) {
    *stream << "sunset, " << sunset.progress << " of the span";
}
inline void PrintTo(const Day& /*day*/, std::ostream* stream) {
    *stream << "day";
}
inline void PrintTo(const Night& /*night*/, std::ostream* stream) {
    *stream << "night";
}

} // namespace nocta
