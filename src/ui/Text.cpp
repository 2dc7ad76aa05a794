#include "ui/Text.h"

#include <array>

namespace nocta {

namespace {

/// What the services say in English, for the translators' tools, which look for texts here.
[[maybe_unused]] constexpr std::array textsOfServices = {
    QT_TRANSLATE_NOOP("Nocta", "Everyday"),
    QT_TRANSLATE_NOOP("Nocta", "Balanced for daily use"),
    QT_TRANSLATE_NOOP("Nocta", "Night Owl"),
    QT_TRANSLATE_NOOP("Nocta", "Warmer & dimmer for night"),
    QT_TRANSLATE_NOOP("Nocta", "Focus"),
    QT_TRANSLATE_NOOP("Nocta", "Minimal distractions"),
    QT_TRANSLATE_NOOP("Nocta", "Suggestion"),
    QT_TRANSLATE_NOOP("Nocta", "Bug report"),
    QT_TRANSLATE_NOOP("Nocta", "Other"),
    QT_TRANSLATE_NOOP("Nocta", "Failed to prepare request"),
    QT_TRANSLATE_NOOP("Nocta", "Failed to send. Please try again."),
    QT_TRANSLATE_NOOP("Nocta", "Skip"),
    QT_TRANSLATE_NOOP("Nocta", "Snooze 5 min"),
};

} // namespace

QString Text::of(std::string_view english) {
    return tr(std::string(english).c_str());
}

} // namespace nocta
