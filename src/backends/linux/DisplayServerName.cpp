#include "backends/linux/DisplayServerName.h"

#include <xcb/xcb.h>

#include <cstdlib>

namespace nocta {

std::string xServerName(const std::string& display) {
    // Newer versions of libxcb interpret "unix:" as the start of a socket's path.
    const auto name = display.starts_with("unix:") ? display.substr(4) : display;
    char* text = nullptr;
    int number = 0;
    if (name.empty() || xcb_parse_display(name.c_str(), &text, &number, nullptr) == 0) {
        return display;
    }
    const std::string host = text;
    std::free(text);
    return host + ":" + std::to_string(number);
}

std::filesystem::path waylandSocket(const std::filesystem::path& runtimeFolder,
                                    const std::string& display) {
    return (runtimeFolder / display).lexically_normal();
}

} // namespace nocta
