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

/// An argument of an Exec line: quoted, with a backslash before what the quotes do not protect;
/// as any string of a desktop entry, with its backslashes doubled; and with its percent signs
/// doubled, which would begin a field code.
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

/// The keys by which a desktop's tool says that an entry is not to be started.
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
    // What cannot be written is only noticed when the buffer is flushed, and not by `commit`.
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
