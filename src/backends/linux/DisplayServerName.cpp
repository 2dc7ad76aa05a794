#include "backends/linux/DisplayServerName.h"

#include <xcb/xcb.h>

#include <cstdlib>

namespace nocta {

std::string xServerName(const std::string& display) {
    char* text = nullptr;
    int number = 0;
    if (display.empty() || xcb_parse_display(display.c_str(), &text, &number, nullptr) == 0) {
        return display;
    }
    const std::string host = text;
    std::free(text);
    return (host == "unix" ? "" : host) + ":" + std::to_string(number);
}

std::filesystem::path waylandSocket(const std::filesystem::path& runtimeFolder,
                                    const std::string& display) {
    return (runtimeFolder / display).lexically_normal();
}

} // namespace nocta
