#include "backends/linux/files/AutostartLoginItem.h"

#include "backends/linux/files/FileContent.h"
#include "backends/linux/files/PrivateFolder.h"

#include <QSaveFile>
#include <QString>

#include <cerrno>
#include <cstring>
#include <glib.h>
#include <string>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace nocta {

namespace {

constexpr std::size_t maxEntrySize = 1 << 16; // bytes

constexpr auto group = "Desktop Entry";

/// Quotes an argument of an Exec line, with a backslash before characters that are special inside
/// quotes. Percent signs are doubled, because a single one would start a field code.
std::string execArgument(const std::filesystem::path& path) {
    std::string quoted = "\"";
    for (const auto character : path.native()) {
        if (std::string_view("\\\"`$").find(character) != std::string_view::npos) {
            quoted += '\\';
        }
        quoted += character;
        if (character == '%') {
            quoted += '%';
        }
    }
    return quoted + '"';
}

/// Whether the entry has this value for a key.
bool has(GKeyFile* entry, const char* key, bool value) {
    g_autoptr(GError) error = nullptr;
    const auto found = g_key_file_get_boolean(entry, group, key, &error) != FALSE;
    return error == nullptr && found == value;
}

} // namespace

AutostartLoginItem::AutostartLoginItem(std::filesystem::path entry, std::filesystem::path program)
    : entry_(std::move(entry)), program_(std::move(program)) {}

LoginItem::Status AutostartLoginItem::status() {
    std::string content;
    if (readFile(entry_, maxEntrySize, content) != 0) {
        return Status::notRegistered;
    }
    g_autoptr(GKeyFile) entry = g_key_file_new();
    if (g_key_file_load_from_data(entry, content.data(), content.size(), G_KEY_FILE_NONE,
                                  nullptr) == FALSE) {
        return Status::notRegistered;
    }
    g_autofree char* command = g_key_file_get_string(entry, group, "Exec", nullptr);
    // Desktop tools set these keys to disable an entry.
    const auto isDisabled = has(entry, "Hidden", true) ||
                            has(entry, "X-GNOME-Autostart-enabled", false) ||
                            has(entry, "X-MATE-Autostart-enabled", false);
    return command == nullptr || *command == '\0' || isDisabled ? Status::notRegistered
                                                                : Status::enabled;
}

std::optional<std::string> AutostartLoginItem::registerItem() {
    if (const auto error = createPrivateFolders(entry_.parent_path())) {
        return error.message();
    }
    g_autoptr(GKeyFile) entry = g_key_file_new();
    const auto set = [&](const char* key, const std::string& value) {
        g_key_file_set_string(entry, group, key, value.c_str());
    };
    set("Type", "Application");
    set("Name", "Nocta");
    set("Icon", "nocta");
    set("Exec", execArgument(program_));
    set("Terminal", "false");
    g_autofree char* text = g_key_file_to_data(entry, nullptr, nullptr);
    QSaveFile file(QString::fromStdString(entry_.string())); // replaces the file atomically
    // Some write errors occur only when the buffer is flushed, and `commit` does not report them.
    if (!file.open(QIODevice::WriteOnly) || file.write(text) < 0 || !file.flush() ||
        !file.commit()) {
        return file.errorString().toStdString();
    }
    return std::nullopt;
}

std::optional<std::string> AutostartLoginItem::unregisterItem() {
    if (unlink(entry_.c_str()) != 0 && errno != ENOENT && errno != ENOTDIR) {
        return std::strerror(errno);
    }
    return std::nullopt;
}

} // namespace nocta
