#include "ui/Text.h"

#include <array>

namespace nocta {

namespace {

/// The English texts from services and ports. The translators' tools find them here.
[[maybe_unused]] constexpr std::array textsFromElsewhere = {
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
    QT_TRANSLATE_NOOP("Nocta", "It took too long"),
    QT_TRANSLATE_NOOP("Nocta", "The address is not encrypted"),
    QT_TRANSLATE_NOOP("Nocta", "The connection was lost"),
    QT_TRANSLATE_NOOP("Nocta", "The server was not found"),
    QT_TRANSLATE_NOOP("Nocta", "The server cannot be reached"),
    QT_TRANSLATE_NOOP("Nocta", "The server cannot be trusted"),
    QT_TRANSLATE_NOOP("Nocta", "Too many redirects"),
    QT_TRANSLATE_NOOP("Nocta", "The feed is too long"),
    QT_TRANSLATE_NOOP("Nocta", "The feed gives no valid length for the file"),
    QT_TRANSLATE_NOOP("Nocta", "The file's address is not encrypted"),
    QT_TRANSLATE_NOOP("Nocta", "The file is not a package"),
    QT_TRANSLATE_NOOP("Nocta", "The file is not signed"),
    QT_TRANSLATE_NOOP("Nocta", "The file is not signed by the publisher"),
    QT_TRANSLATE_NOOP("Nocta", "The file is longer than the feed says"),
    QT_TRANSLATE_NOOP("Nocta", "The file is shorter than the feed says"),
    QT_TRANSLATE_NOOP("Nocta", "Software Update"),
    QT_TRANSLATE_NOOP("Nocta", "Skip"),
    QT_TRANSLATE_NOOP("Nocta", "Snooze 5 min"),
};

} // namespace

QString Text::of(std::string_view english) {
    return tr(std::string(english).c_str());
}

} // namespace nocta
