#pragma once

#include <QString>

#include <string>

namespace nocta {

enum class NotesFormat { html, plainText };

/// Returns the release notes of a feed as plain text, in UTF-8: without markup, without content
/// that loads or can be clicked, without characters that hide or reverse text, and with a limited
/// length.
std::string releaseNotes(const QString& text, NotesFormat format);

} // namespace nocta
