#pragma once

namespace nocta {

/// How the progress of an animation follows time: the cubic Bézier curves from (0, 0) to (1, 1)
/// that Core Animation calls kCAMediaTimingFunctionEaseIn, with the control points (0.42, 0) and
/// (1, 1), and kCAMediaTimingFunctionEaseInEaseOut, with (0.42, 0) and (0.58, 1).
enum class TimingFunction { easeIn, easeInEaseOut };

/// Returns the progress (0.0–1.0) at `time`, which is a fraction of the duration (0.0–1.0).
double eased(TimingFunction function, double time);

} // namespace nocta
