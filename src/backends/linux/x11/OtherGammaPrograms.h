#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace nocta {

/// The names of the programs that set gamma ramps by themselves and run on the X server that
/// `display` names, as far as the process table `processes` tells: those of this user, outside a
/// sandbox. What such a program shows when Nocta starts counts as calibration, and both write to
/// the same ramps.
std::vector<std::string> otherGammaPrograms(const std::string& display,
                                            const std::filesystem::path& processes = "/proc");

} // namespace nocta
