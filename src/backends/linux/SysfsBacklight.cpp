#include "backends/linux/SysfsBacklight.h"

#include "backends/linux/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace nocta {

namespace {

/// From the most to the least trusted, after the kernel's own advice on class/backlight.
constexpr std::array<std::string_view, 3> types = {"firmware", "platform", "raw"};

template <class Value>
std::optional<Value> read(const std::filesystem::path& file) {
    std::ifstream input(file);
    Value value{};
    return input >> value ? std::optional(value) : std::nullopt;
}

/// A raw level, which the kernel keeps as an int; none where the file holds anything else.
std::optional<int> readLevel(const std::filesystem::path& file) {
    const auto level = read<int>(file);
    return level && *level >= 0 ? level : std::nullopt;
}

std::optional<int> readLargestLevel(const std::filesystem::path& device) {
    const auto level = readLevel(device / "max_brightness");
    return level != 0 ? level : std::nullopt;
}

bool writeLevel(const std::filesystem::path& file, int level) {
    const auto text = std::to_string(level);
    const FileDescriptor output(open(file.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC));
    return output && write(output.get(), text.data(), text.size()) == std::ssize(text);
}

} // namespace

SysfsBacklight::SysfsBacklight(Displays& displays, SessionWriter sessionWriter,
                               std::filesystem::path sysfs)
    : displays_(displays), sessionWriter_(std::move(sessionWriter)), sysfs_(std::move(sysfs)) {}

Status SysfsBacklight::getBrightness(DisplayId display, float& level) {
    const auto found = displays_.displayIsBuiltin(display) ? device() : std::nullopt;
    const auto largest = found ? readLargestLevel(*found) : std::nullopt;
    const auto current = largest ? readLevel(*found / "brightness") : std::nullopt;
    if (!current) {
        return statusFailure;
    }
    level = static_cast<float>(std::min(*current, *largest)) / static_cast<float>(*largest);
    return statusSuccess;
}

Status SysfsBacklight::setBrightness(DisplayId display, float level) {
    const auto found = displays_.displayIsBuiltin(display) ? device() : std::nullopt;
    const auto largest = found ? readLargestLevel(*found) : std::nullopt;
    if (!largest || !(level >= 0 && level <= 1)) {
        return statusFailure;
    }
    // On a device of few levels a low one must not become 0, which may mean "off".
    const auto lowest = level > 0 ? 1 : 0;
    const auto raw = std::max(static_cast<int>(std::lround(double{level} * *largest)), lowest);
    const auto isDone = writeLevel(*found / "brightness", raw) ||
                        sessionWriter_(found->filename().string(), static_cast<std::uint32_t>(raw));
    return isDone ? statusSuccess : statusFailure;
}

std::optional<std::filesystem::path> SysfsBacklight::device() const {
    std::optional<std::filesystem::path> best;
    const auto* bestType = types.end();
    std::error_code error;
    for (auto entry = std::filesystem::directory_iterator(sysfs_ / "class/backlight", error);
         !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const auto type = read<std::string>(entry->path() / "type");
        const auto* const rank = std::ranges::find(types, type.value_or(""));
        if (rank < bestType || (rank == bestType && best && entry->path() < *best)) {
            bestType = rank;
            best = entry->path();
        }
    }
    return best;
}

} // namespace nocta
