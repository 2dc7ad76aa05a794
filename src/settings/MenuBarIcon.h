#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace nocta {

/// The symbol shown in the menu bar. The raw value, which is also the stored value, is the name of
/// the symbol.
enum class MenuBarIcon { eye, leaf, sparkles };

inline constexpr std::array allMenuBarIcons = {MenuBarIcon::eye, MenuBarIcon::leaf,
                                               MenuBarIcon::sparkles};

std::string_view rawValue(MenuBarIcon icon);
std::optional<MenuBarIcon> menuBarIconFromRawValue(std::string_view rawValue);

} // namespace nocta
