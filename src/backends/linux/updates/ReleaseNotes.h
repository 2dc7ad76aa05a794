#pragma once

#include <QString>

#include <string>

namespace nocta {

enum class NotesFormat { html, plainText };

/// What a feed says of a release, as text to be read: no markup, nothing that is loaded or can be
/// clicked, no characters that hide or turn around others, and no more than anybody reads. UTF-8.
std::string releaseNotes(const QString& text, NotesFormat format);

} // namespace nocta
