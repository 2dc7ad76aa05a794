#pragma once

namespace nocta {

/// How something that is animated follows its time: the cubic Bézier curves through (0, 0) and
/// (1, 1) that Core Animation calls kCAMediaTimingFunctionEaseIn, with the control points
/// (0.42, 0) and (1, 1), and kCAMediaTimingFunctionEaseInEaseOut, with (0.42, 0) and (0.58, 1).
enum class TimingFunction { easeIn, easeInEaseOut };

/// How far it has come, in 0.0–1.0, when the part `time` of its time has gone by, in 0.0–1.0.
double eased(TimingFunction function, double time);

} // namespace nocta
