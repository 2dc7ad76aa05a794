#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace nocta {

/// The names of other programs that set gamma ramps and run on the X server that `display` names.
/// It searches the process table `processes` and finds only processes of this user, outside a
/// sandbox. If such a program runs when Nocta starts, its current ramp counts as calibration, and
/// both programs write to the same ramps.
std::vector<std::string> otherGammaPrograms(const std::string& display,
                                            const std::filesystem::path& processes = "/proc");

} // namespace nocta
