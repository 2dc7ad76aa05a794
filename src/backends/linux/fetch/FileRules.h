#pragma once

#include "backends/linux/fetch/Confinement.h"

namespace nocta {

/// Limits this process to the files that it needs, with the kernel's Landlock. Does nothing on a
/// kernel without Landlock. Returns false if the limits cannot be set.
bool limitFiles(const Needs& needs);

} // namespace nocta
