#include "backends/linux/files/AutostartLoginItem.h"

#include "backends/linux/files/FileContent.h"
#include "backends/linux/files/PrivateFolder.h"

#include <QByteArray>
#include <QSaveFile>
#include <QString>

#include <cerrno>
#include <cstring>
#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace nocta {

namespace {

constexpr std::size_t maxEntrySize = 1 << 16; // bytes

/// Escapes an argument of an Exec line. It is quoted, with a backslash before characters that are
/// special inside quotes. As in every string of a desktop entry, backslashes are doubled; so are
/// percent signs, which would start a field code.
QByteArray execArgument(const std::filesystem::path& path) {
    QByteArray quoted;
    for (const auto character : path.native()) {
        switch (character) {
        case '\\':
            quoted += R"(\\\\)";
            break;
        case '"':
        case '`':
        case '$':
            quoted += R"(\\)";
            quoted += character;
            break;
        case '%':
            quoted += "%%";
            break;
        case '\n':
            quoted += R"(\n)";
            break;
        default:
            quoted += character;
        }
    }
    return '"' + quoted + '"';
}

/// The keys that desktop tools set to disable an entry.
bool switchesOff(const QByteArray& key, const QByteArray& value) {
    return (key == "Hidden" && value == "true") ||
           (key == "X-GNOME-Autostart-enabled" && value == "false") ||
           (key == "X-MATE-Autostart-enabled" && value == "false");
}

} // namespace

AutostartLoginItem::AutostartLoginItem(std::filesystem::path entry, std::filesystem::path program)
    : entry_(std::move(entry)), program_(std::move(program)) {}

LoginItem::Status AutostartLoginItem::status() {
    std::string content;
    if (readFile(entry_, maxEntrySize, content) != 0) {
        return Status::notRegistered;
    }
    bool isInside = false;
    auto status = Status::notRegistered;
    for (const auto& line : QByteArray::fromStdString(content).split('\n')) {
        const auto text = line.trimmed();
        if (text.startsWith('[')) {
            isInside = text == "[Desktop Entry]";
            continue;
        }
        const auto equals = text.indexOf('=');
        if (!isInside || equals < 0) {
            continue;
        }
        const auto key = text.left(equals).trimmed();
        const auto value = text.mid(equals + 1).trimmed();
        if (switchesOff(key, value)) {
            return Status::notRegistered;
        }
        if (key == "Exec" && !value.isEmpty()) {
            status = Status::enabled;
        }
    }
    return status;
}

std::optional<std::string> AutostartLoginItem::registerItem() {
    if (const auto error = createPrivateFolders(entry_.parent_path())) {
        return error.message();
    }
    QSaveFile file(QString::fromStdString(entry_.string())); // replaces in one step
    const auto text = "[Desktop Entry]\n"
                      "Type=Application\n"
                      "Name=Nocta\n"
                      "Icon=nocta\n"
                      "Exec=" +
                      execArgument(program_) +
                      "\n"
                      "Terminal=false\n";
    // Some write errors only show when the buffer is flushed, and `commit` does not report them.
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.flush() ||
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
