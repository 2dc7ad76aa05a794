#include "backends/linux/fetch/ReleaseNotes.h"

#include "backends/linux/fetch/FetchProtocol.h"

#include <algorithm>
#include <array>
#include <glib.h>

namespace nocta {

namespace {

constexpr std::string_view ellipsis = "…";

/// Control and format characters, including those that change the text direction.
bool isHidden(gunichar character) {
    switch (g_unichar_type(character)) {
    case G_UNICODE_CONTROL:
    case G_UNICODE_FORMAT:
    case G_UNICODE_SURROGATE:
    case G_UNICODE_PRIVATE_USE:
    case G_UNICODE_UNASSIGNED:
        return true;
    default:
        return false;
    }
}

/// Removes hidden characters, and replaces white space with single spaces. A byte that is not
/// UTF-8 is removed.
std::string visibleText(std::string_view line) {
    std::string visible;
    bool needsSpace = false;
    while (!line.empty()) {
        const auto character =
            g_utf8_get_char_validated(line.data(), static_cast<gssize>(line.size()));
        const auto isValid = character < static_cast<gunichar>(-2); // the two highest are errors
        const auto size =
            isValid ? static_cast<std::size_t>(g_utf8_skip[static_cast<guchar>(line.front())]) : 1;
        if (isValid && g_unichar_isspace(character) != 0) {
            needsSpace = !visible.empty();
        } else if (isValid && !isHidden(character)) {
            visible += needsSpace ? " " : "";
            visible += line.substr(0, size);
            needsSpace = false;
        }
        line.remove_prefix(size);
    }
    return visible;
}

/// Shortens a text to `maxReleaseNotesSize`, between two characters.
void truncate(std::string& text) {
    if (text.size() <= maxReleaseNotesSize) {
        return;
    }
    text.resize(maxReleaseNotesSize - ellipsis.size() + 1);
    const auto* const end = g_utf8_find_prev_char(text.data(), text.data() + text.size());
    text.resize(static_cast<std::size_t>(end - text.data()));
    text += ellipsis;
}

} // namespace

std::string releaseNotes(std::string_view text) {
    std::string lines;
    int newLines = 0;
    while (!text.empty() && lines.size() <= maxReleaseNotesSize) {
        const auto end = std::min(text.find('\n'), text.size());
        const auto visible = visibleText(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        newLines = std::min(newLines + 1, 2);
        if (!visible.empty()) {
            lines += lines.empty() ? "" : newLines == 1 ? "\n" : "\n\n";
            lines += visible;
            newLines = 0;
        }
    }
    truncate(lines);
    return lines;
}

} // namespace nocta
