#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace nocta {

/// The symbol shown in the menu bar. The raw value is both what is stored and the symbol's name.
enum class MenuBarIcon { eye, leaf, sparkles };

inline constexpr std::array allMenuBarIcons = {MenuBarIcon::eye, MenuBarIcon::leaf,
                                               MenuBarIcon::sparkles};

std::string_view rawValue(MenuBarIcon icon);
std::optional<MenuBarIcon> menuBarIconFromRawValue(std::string_view rawValue);

} // namespace nocta
