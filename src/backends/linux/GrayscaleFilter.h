#pragma once

namespace nocta {

/// A way in which this session can take the colour out of its whole screen. What was there before
/// is given back when the filter is switched off or destroyed, and when the process dies.
class GrayscaleFilter {
public:
    virtual ~GrayscaleFilter() = default;

    /// Whether the screen is gray, whoever has made it so.
    virtual bool isOn() = 0;
    virtual void setOn(bool on) = 0;
};

} // namespace nocta
