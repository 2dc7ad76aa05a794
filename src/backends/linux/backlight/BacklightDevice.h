#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace nocta {

/// Returns the device in `<sysfs>/class/backlight` that lights a built-in display. `outputName` is
/// the name of the display's output and may be empty. Returns nothing if there is no device, or if
/// every device is known to light another display.
///
/// A device belongs to the connector that is its parent. If its parent is the connector's graphics
/// card, or is not a graphics card, the device may belong to that connector. Among devices that
/// match equally well, the best type wins: firmware, then platform, then raw. If the connector is
/// unknown, all devices match equally well.
std::optional<std::filesystem::path> backlightDevice(const std::filesystem::path& sysfs,
                                                     const std::string& outputName);

} // namespace nocta
