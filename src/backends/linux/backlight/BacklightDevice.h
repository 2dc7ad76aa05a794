#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace nocta {

/// The device in `<sysfs>/class/backlight` that lights a built-in display, by the name of the
/// display's output, which may be empty. None where there is no device, or where each of them is
/// known to light another display.
///
/// A device belongs to the connector that it hangs on. One that hangs on the connector's graphics
/// card, or on no graphics card, may belong to it. Among equals the best type counts: firmware,
/// then platform, then raw. Where the connector cannot be told, all devices are equals.
std::optional<std::filesystem::path> backlightDevice(const std::filesystem::path& sysfs,
                                                     const std::string& outputName);

} // namespace nocta
