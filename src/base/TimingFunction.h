#pragma once

namespace nocta {

/// The pace of an animation. Each value is a cubic Bézier curve from (0, 0) to (1, 1). The curve of
/// `easeIn` has the control points (0.42, 0) and (1, 1), like kCAMediaTimingFunctionEaseIn in Core
/// Animation. The curve of `easeInEaseOut` has (0.42, 0) and (0.58, 1), like
/// kCAMediaTimingFunctionEaseInEaseOut.
enum class TimingFunction { easeIn, easeInEaseOut };

/// Returns the progress (0.0–1.0) at `time`, which is a fraction of the duration (0.0–1.0).
double eased(TimingFunction function, double time);

} // namespace nocta
