#pragma once

#include <QString>

#include <string>

namespace nocta {

enum class NotesFormat { html, plainText };

/// The release notes of a feed as plain text to be shown: no markup, nothing that loads or can be
/// clicked, no characters that hide or reverse others, and no more than anybody reads. UTF-8.
std::string releaseNotes(const QString& text, NotesFormat format);

} // namespace nocta
