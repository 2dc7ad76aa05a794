#pragma once

namespace nocta {

/// A way for this session to turn its whole screen gray. The screen goes back to what it was when
/// the filter is switched off or destroyed, and when the process dies.
class GrayscaleFilter {
public:
    virtual ~GrayscaleFilter() = default;

    /// Whether the screen is gray, no matter which program made it so.
    virtual bool isOn() = 0;
    virtual void setOn(bool on) = 0;
};

} // namespace nocta
