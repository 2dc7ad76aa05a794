#pragma once

#include <array>
#include <string_view>

namespace nocta {

enum class PreferencesTab { general, brightness, color, breaks, feedback, about };

inline constexpr std::array allPreferencesTabs = {
    PreferencesTab::general, PreferencesTab::brightness, PreferencesTab::color,
    PreferencesTab::breaks,  PreferencesTab::feedback,   PreferencesTab::about};

std::string_view rawValue(PreferencesTab tab);
/// The title in English.
std::string_view title(PreferencesTab tab);
std::string_view symbol(PreferencesTab tab);

} // namespace nocta
