#include "backends/linux/applications/FlatpakInfo.h"

#include "backends/linux/files/FileContent.h"

#include <algorithm>
#include <cctype>
#include <fcntl.h>
#include <glib.h>
#include <string_view>

namespace nocta {

namespace {

constexpr std::size_t maxInfoSize = 1 << 16; // bytes
constexpr std::size_t maxIdLength = 255;

bool isId(std::string_view text) {
    return !text.empty() && text.size() <= maxIdLength &&
           std::ranges::all_of(text, [](char letter) {
               return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '.' ||
                      letter == '_' || letter == '-';
           });
}

} // namespace

std::string flatpakId(const std::filesystem::path& root) {
    std::string text;
    g_autoptr(GKeyFile) file = g_key_file_new();
    if (readFile(root / ".flatpak-info", maxInfoSize, text, O_NOFOLLOW) != 0 ||
        g_key_file_load_from_data(file, text.data(), text.size(), G_KEY_FILE_NONE, nullptr) ==
            FALSE) {
        return {};
    }
    g_autofree char* name = g_key_file_get_string(file, "Application", "name", nullptr);
    return name != nullptr && isId(name) ? name : std::string();
}

} // namespace nocta
