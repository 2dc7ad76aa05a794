#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace nocta {

/// The names of other programs that set gamma ramps and run on the X server that `display` names.
/// This function searches the process table `processes`, and finds only processes that belong to
/// this user and run outside a sandbox. If one of these programs is running when Nocta starts,
/// Nocta mistakes that program's ramp for a calibration, and both programs write to the same ramps.
std::vector<std::string> otherGammaPrograms(const std::string& display,
                                            const std::filesystem::path& processes = "/proc");

} // namespace nocta
