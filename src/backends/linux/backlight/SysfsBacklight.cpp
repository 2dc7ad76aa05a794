#include "backends/linux/backlight/SysfsBacklight.h"

#include "backends/linux/backlight/BacklightDevice.h"
#include "backends/linux/files/FileDescriptor.h"

#include <algorithm>
#include <cmath>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <unistd.h>
#include <utility>

namespace nocta {

namespace {

/// Reads a raw level, which is an int in the kernel. Returns nothing if the file contains anything
/// else.
std::optional<int> readLevel(const std::filesystem::path& file) {
    std::ifstream input(file);
    int level = 0;
    return input >> level && level >= 0 ? std::optional(level) : std::nullopt;
}

std::optional<int> readMaxLevel(const std::filesystem::path& device) {
    const auto level = readLevel(device / "max_brightness");
    return level != 0 ? level : std::nullopt;
}

bool writeLevel(const std::filesystem::path& file, int level) {
    const auto text = std::to_string(level);
    const FileDescriptor output(open(file.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC));
    return output && write(output.get(), text.data(), text.size()) == std::ssize(text);
}

} // namespace

SysfsBacklight::SysfsBacklight(Displays& displays, OutputName outputName,
                               SessionWriter sessionWriter, std::filesystem::path sysfs)
    : displays_(displays), outputName_(std::move(outputName)),
      sessionWriter_(std::move(sessionWriter)), sysfs_(std::move(sysfs)) {}

Status SysfsBacklight::getBrightness(DisplayId display, float& level) {
    const auto found = device(display);
    const auto maxLevel = found ? readMaxLevel(*found) : std::nullopt;
    const auto current = maxLevel ? readLevel(*found / "brightness") : std::nullopt;
    if (!current) {
        return statusFailure;
    }
    level = static_cast<float>(std::min(*current, *maxLevel)) / static_cast<float>(*maxLevel);
    return statusSuccess;
}

Status SysfsBacklight::setBrightness(DisplayId display, float level) {
    const auto found = device(display);
    const auto maxLevel = found ? readMaxLevel(*found) : std::nullopt;
    if (!maxLevel || !(level >= 0 && level <= 1)) {
        return statusFailure;
    }
    // On a device with few levels, a low level must not be rounded to 0, which may mean "off".
    const auto lowest = level > 0 ? 1 : 0;
    const auto raw = std::max(static_cast<int>(std::lround(double{level} * *maxLevel)), lowest);
    const auto isDone = writeLevel(*found / "brightness", raw) ||
                        sessionWriter_(found->filename().string(), static_cast<std::uint32_t>(raw));
    return isDone ? statusSuccess : statusFailure;
}

std::optional<std::filesystem::path> SysfsBacklight::device(DisplayId display) const {
    return displays_.displayIsBuiltin(display) ? backlightDevice(sysfs_, outputName_(display))
                                               : std::nullopt;
}

} // namespace nocta
