#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace nocta {

/// The device in `<sysfs>/class/backlight` that lights a built-in display. `outputName` is the name
/// of the display's output and may be empty. Nothing if there is no device, or if every device is
/// known to light another display.
///
/// A device belongs to the connector that is its parent. A device whose parent is the connector's
/// graphics card, or no graphics card, may belong to it. Among equals the best type wins: firmware,
/// then platform, then raw. If the connector is unknown, all devices are equal.
std::optional<std::filesystem::path> backlightDevice(const std::filesystem::path& sysfs,
                                                     const std::string& outputName);

} // namespace nocta
