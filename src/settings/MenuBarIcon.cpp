#include "settings/MenuBarIcon.h"

#include <algorithm>
#include <cstddef>

namespace nocta {

namespace {
constexpr std::array<std::string_view, allMenuBarIcons.size()> rawValues = {"eye", "leaf",
                                                                            "sparkles"};
}

std::string_view rawValue(MenuBarIcon icon) {
    return rawValues.at(static_cast<std::size_t>(icon));
}

std::optional<MenuBarIcon> menuBarIconFromRawValue(std::string_view value) {
    const auto* const found = std::ranges::find(allMenuBarIcons, value, rawValue);
    return found == allMenuBarIcons.end() ? std::nullopt : std::optional(*found);
}

} // namespace nocta
