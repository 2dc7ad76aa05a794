#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace nocta {

/// Reads a whole file, and nothing but a regular one of at most `maxSize` bytes: neither a named
/// pipe nor an endless file is waited for. Gives 0, or an error number beside what could be read.
int readFile(const std::filesystem::path& file, std::size_t maxSize, std::string& content);

} // namespace nocta
