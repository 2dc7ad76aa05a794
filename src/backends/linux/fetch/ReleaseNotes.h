#pragma once

#include <string>
#include <string_view>

namespace nocta {

/// Returns the release notes of a feed as they are shown: without characters that hide or reverse
/// text, with at most one empty line between paragraphs, and at most `maxReleaseNotesSize` bytes
/// long. Both texts are UTF-8. Calling the function with its own result changes nothing.
std::string releaseNotes(std::string_view text);

} // namespace nocta
