#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace nocta {

/// Reads a whole regular file of at most `maxSize` bytes, and refuses anything else: this function
/// never waits for a named pipe or reads an endless file. With the flag O_NOFOLLOW it also refuses
/// a link. Returns 0 or an error number. After an error, `content` holds what could be read.
int readFile(const std::filesystem::path& file, std::size_t maxSize, std::string& content,
             int flags = 0);

} // namespace nocta
