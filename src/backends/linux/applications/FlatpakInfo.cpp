#include "backends/linux/applications/FlatpakInfo.h"

#include "backends/linux/files/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fcntl.h>
#include <glib.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace nocta {

namespace {

// The group with the application's name comes first.
constexpr std::size_t readLength = 4096;
constexpr std::size_t maxIdLength = 255;

bool isId(std::string_view text) {
    return !text.empty() && text.size() <= maxIdLength &&
           std::ranges::all_of(text, [](char letter) {
               return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '.' ||
                      letter == '_' || letter == '-';
           });
}

std::string nameIn(std::string_view text) {
    if (text.size() == readLength) { // without the line that was cut off
        text = text.substr(0, text.rfind('\n') + 1);
    }
    g_autoptr(GKeyFile) file = g_key_file_new();
    if (g_key_file_load_from_data(file, text.data(), text.size(), G_KEY_FILE_NONE, nullptr) ==
        FALSE) {
        return {};
    }
    g_autofree char* name = g_key_file_get_string(file, "Application", "name", nullptr);
    return name != nullptr && isId(name) ? name : std::string();
}

} // namespace

std::string flatpakId(const std::filesystem::path& root) {
    const auto path = root / ".flatpak-info";
    const FileDescriptor file(
        open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return {};
    }
    std::array<char, readLength> text{};
    const auto length = read(file.get(), text.data(), text.size());
    return length <= 0 ? std::string() : nameIn({text.data(), static_cast<std::size_t>(length)});
}

} // namespace nocta
