#include "ui/preferences/PreferencesTab.h"

#include <QtGlobal>

#include <cstddef>

namespace nocta {

namespace {

struct Presentation {
    std::string_view rawValue;
    std::string_view title;
    std::string_view symbol;
};

constexpr std::array presentations = {
    Presentation{"general", QT_TRANSLATE_NOOP("Nocta", "General"), "gear"},
    Presentation{"brightness", QT_TRANSLATE_NOOP("Nocta", "Brightness"), "sun.max"},
    Presentation{"color", QT_TRANSLATE_NOOP("Nocta", "Color"), "paintpalette"},
    Presentation{"breaks", QT_TRANSLATE_NOOP("Nocta", "Breaks"), "clock"},
    Presentation{"feedback", QT_TRANSLATE_NOOP("Nocta", "Feedback"), "bubble.left"},
    Presentation{"about", QT_TRANSLATE_NOOP("Nocta", "About"), "info.circle"},
};
static_assert(presentations.size() == allPreferencesTabs.size());

const Presentation& presentationOf(PreferencesTab tab) {
    return presentations.at(static_cast<std::size_t>(tab));
}

} // namespace

std::string_view rawValue(PreferencesTab tab) {
    return presentationOf(tab).rawValue;
}

std::string_view title(PreferencesTab tab) {
    return presentationOf(tab).title;
}

std::string_view symbol(PreferencesTab tab) {
    return presentationOf(tab).symbol;
}

} // namespace nocta
