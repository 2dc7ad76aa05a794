#pragma once

#include "backends/linux/fetch/Confinement.h"

namespace nocta {

/// Limits this process to the files that it needs, with the kernel's Landlock. Where the kernel
/// supports it, also prevents signals to other programs, connections to their abstract sockets, and
/// servers. Does nothing on a kernel without Landlock. Returns false if the limits cannot be set.
bool limitFiles(const Needs& needs);

} // namespace nocta
