// Preloaded into Xorg with the dummy driver. The driver prints the name of each output into a
// buffer; this library replaces the first names with those in OUTPUT_NAMES. Each name in
// OUTPUT_NAMES ends with a space.

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

/// Returns the name for the output with the given number, or null.
const char* nameOf(unsigned int output) {
    const auto* name = std::getenv("OUTPUT_NAMES");
    for (; name != nullptr && *name != '\0'; --output) {
        if (output == 0) {
            return name;
        }
        name = std::strchr(name, ' ') + 1;
    }
    return nullptr;
}

} // namespace

// The driver calls this function instead of `snprintf` if the driver was built with buffer checks.
extern "C" int __snprintf_chk(char* buffer, std::size_t size, int /*flag*/, std::size_t /*room*/,
                              const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    auto length = 0;
    if (std::strcmp(format, "DUMMY%u") == 0) {
        const auto output = va_arg(arguments, unsigned int);
        const auto* const name = nameOf(output);
        length = name == nullptr ? std::snprintf(buffer, size, "DUMMY%u", output)
                                 : std::snprintf(buffer, size, "%.*s",
                                                 static_cast<int>(std::strcspn(name, " ")), name);
    } else {
        length = std::vsnprintf(buffer, size, format, arguments);
    }
    va_end(arguments);
    return length;
}
