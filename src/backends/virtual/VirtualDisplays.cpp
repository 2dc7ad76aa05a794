#include "backends/virtual/VirtualDisplays.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <utility>

namespace nocta {

namespace {

void append(std::string& text, std::string_view word) {
    text += word;
}

template <class Number>
requires std::is_arithmetic_v<Number>
void append(std::string& text, Number number) {
    std::array<char, 24> digits{};
    auto* end = digits.data();
    if constexpr (std::is_floating_point_v<Number>) {
        constexpr int precision = 4;
        end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                            std::chars_format::general, precision)
                  .ptr;
    } else {
        end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    }
    text.append(digits.data(), end);
}

/// Joins the words of a traced call with spaces. Fractions have up to four significant digits.
template <class... Words>
std::string line(const Words&... words) {
    std::string text;
    const auto* separator = "";
    ((text += separator, append(text, words), separator = " "), ...);
    return text;
}

} // namespace

void VirtualDisplays::plug(Display display) {
    displays_.push_back(std::move(display));
    notificationCenter_.post(didChangeScreenParametersNotification);
}

void VirtualDisplays::unplug(DisplayId id) {
    std::erase_if(displays_, [id](const Display& display) { return display.id == id; });
    notificationCenter_.post(didChangeScreenParametersNotification);
}

VirtualDisplays::Display& VirtualDisplays::display(DisplayId id) {
    auto* const found = find(id);
    if (found == nullptr) {
        throw std::out_of_range(line("no virtual display", id));
    }
    return *found;
}

Status VirtualDisplays::getActiveDisplayList(std::span<DisplayId> ids, std::uint32_t& count) {
    trace_.record(line("getActiveDisplayList", ids.size()));
    if (listFails) {
        count = 0;
        return statusFailure;
    }
    const auto number = ids.empty() ? displays_.size() : std::min(ids.size(), displays_.size());
    for (std::size_t i = 0; i < std::min(ids.size(), number); ++i) {
        ids[i] = displays_[i].id;
    }
    count = static_cast<std::uint32_t>(number);
    return statusSuccess;
}

Rect VirtualDisplays::displayBounds(DisplayId id) {
    const auto* const display = find(id);
    return display == nullptr ? Rect{} : display->bounds;
}

bool VirtualDisplays::displayIsMain(DisplayId id) {
    const auto* const display = find(id);
    return display != nullptr && display->isMain;
}

bool VirtualDisplays::displayIsBuiltin(DisplayId id) {
    const auto* const display = find(id);
    return display != nullptr && display->isBuiltIn;
}

std::optional<DisplayMode> VirtualDisplays::displayCopyDisplayMode(DisplayId id) {
    const auto* const display = find(id);
    return display == nullptr ? std::nullopt : display->mode;
}

Status VirtualDisplays::setDisplayTransferByTable(DisplayId id, std::span<const float> red,
                                                  std::span<const float> green,
                                                  std::span<const float> blue) {
    trace_.record(
        line("setDisplayTransferByTable", id, "top", red.back(), green.back(), blue.back()));
    auto* const display = find(id);
    if (display == nullptr || display->gammaFails) {
        return statusFailure;
    }
    display->red.assign(red.begin(), red.end());
    display->green.assign(green.begin(), green.end());
    display->blue.assign(blue.begin(), blue.end());
    return statusSuccess;
}

void VirtualDisplays::displayRestoreColorSyncSettings() {
    trace_.record("displayRestoreColorSyncSettings");
    for (auto& display : displays_) {
        display.red.clear();
        display.green.clear();
        display.blue.clear();
    }
}

Status VirtualDisplays::getBrightness(DisplayId id, float& level) {
    trace_.record(line("getBrightness", id));
    const auto* const display = find(id);
    if (display == nullptr || !display->isBuiltIn || backlightReadFails) {
        return statusFailure;
    }
    level = display->backlight;
    return statusSuccess;
}

Status VirtualDisplays::setBrightness(DisplayId id, float level) {
    trace_.record(line("setBrightness", id, level));
    auto* const display = find(id);
    if (display == nullptr || !display->isBuiltIn || backlightWriteFails) {
        return statusFailure;
    }
    display->backlight = level;
    return statusSuccess;
}

VirtualDisplays::Display* VirtualDisplays::find(DisplayId id) {
    const auto found = std::ranges::find(displays_, id, &Display::id);
    return found == displays_.end() ? nullptr : &*found;
}

} // namespace nocta
