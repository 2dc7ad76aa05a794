#pragma once

namespace nocta {

/// Turns the whole screen of this session gray. The previous colors return when the filter is
/// switched off or destroyed, and when the process dies.
class GrayscaleFilter {
public:
    virtual ~GrayscaleFilter() = default;

    /// Whether the screen is gray, no matter which program turned it gray.
    virtual bool isOn() = 0;
    virtual void setOn(bool on) = 0;
};

} // namespace nocta
