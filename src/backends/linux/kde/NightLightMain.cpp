// nocta-warmth: makes KDE's Night Light show the temperatures that Nocta sends, until Nocta closes
// its end of the socket or dies. A separate program is needed because KWin keeps the changed
// settings even if the program that changed them dies. See `NightLightProtocol.h` for the messages
// and arguments. If the notes file exists at startup, an earlier helper was killed, and the
// settings in that file are restored first.

#include "backends/linux/files/FileContent.h"
#include "backends/linux/files/FileLock.h"
#include "backends/linux/files/PrivateFolder.h"
#include "backends/linux/kde/ConfigGroup.h"
#include "backends/linux/kde/NightLightProtocol.h"
#include "backends/linux/process/HelperProtocol.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QHash>
#include <QLockFile>
#include <QSaveFile>
#include <QStandardPaths>

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <unistd.h>

namespace {

using namespace nocta;
using namespace std::chrono_literals;

constexpr std::size_t maxFileSize = 1 << 24; // bytes
constexpr auto lockTimeout = 5s;
/// In milliseconds. If the owner of the lock died while taking it, Qt ignores the lock after 30 s.
constexpr int configLockTimeout = 40000;

constexpr auto group = "NightColor";
constexpr auto isActive = "Active";
constexpr auto mode = "Mode";
constexpr auto temperature = "NightTemperature";
constexpr auto on = "true";
constexpr auto constantMode = "Constant";

std::string configFile() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation).toStdString() +
           "/kwinrc";
}

/// Returns an empty group if the file is missing, and nullopt if the file cannot be read.
std::optional<ConfigGroup> readGroup(const std::string& file) {
    std::string text;
    const auto error = readFile(file, maxFileSize, text);
    return error == 0 || error == ENOENT ? std::optional(ConfigGroup(text, group)) : std::nullopt;
}

/// Replaces the whole file. If the file is a symbolic link, replaces its target.
bool save(const std::string& file, const ConfigGroup& settings) {
    QSaveFile output(QString::fromStdString(file));
    const auto text = QByteArray::fromStdString(settings.text());
    return output.open(QIODevice::WriteOnly) && output.write(text) == text.size() &&
           output.commit();
}

/// Tells KWin to reread its settings. Returns once the bus has received the signal.
void notifyKWin() {
    const auto bus = QDBusConnection::sessionBus();
    auto signal = QDBusMessage::createSignal(QStringLiteral("/kwinrc"),
                                             QStringLiteral("org.kde.kconfig.notify"),
                                             QStringLiteral("ConfigChanged"));
    signal << QVariant::fromValue(
        QHash<QString, QByteArrayList>{{group, {isActive, mode, temperature}}});
    bus.send(signal);
    const auto name = QStringLiteral("org.freedesktop.DBus");
    bus.call(QDBusMessage::createMethodCall(name, QStringLiteral("/org/freedesktop/DBus"), name,
                                            QStringLiteral("GetId")));
}

/// Changes KWin's settings while holding their lock, so that no change made by another program is
/// lost. Returns false if the settings cannot be locked, read or written.
template <class Change>
bool changeSettings(const Change& change) {
    const auto file = configFile();
    // KDE's programs use the same lock.
    QLockFile lock(QString::fromStdString(file) + QStringLiteral(".lock"));
    if (!lock.tryLock(configLockTimeout)) {
        return false;
    }
    auto settings = readGroup(file);
    if (!settings) {
        return false;
    }
    change(*settings);
    const auto isSaved = save(file, *settings);
    lock.unlock();
    notifyKWin();
    return isSaved;
}

void copy(const char* key, const ConfigGroup& from, ConfigGroup& to) {
    to.set(key, from.value(key));
}

/// Saves the user's settings in the notes file, unless that file already exists.
bool note(const std::string& notesFile) {
    if (std::filesystem::exists(notesFile)) {
        return true;
    }
    const auto settings = readGroup(configFile());
    ConfigGroup notes("", group);
    for (const auto* const key : {isActive, mode, temperature}) {
        copy(key, settings.value_or(notes), notes);
    }
    return settings && save(notesFile, notes);
}

bool show(NightLightTemperature kelvin) {
    return changeSettings([&](ConfigGroup& settings) {
        settings.set(isActive, on);
        settings.set(mode, constantMode);
        settings.set(temperature, std::to_string(kelvin));
    });
}

/// Restores the settings in the notes file. Keeps settings that the user has changed in the
/// meantime.
void restore(const std::string& notesFile) {
    if (!std::filesystem::exists(notesFile)) {
        return;
    }
    const auto notes = readGroup(notesFile);
    const auto isRestored = notes && changeSettings([&](ConfigGroup& settings) {
                                if (settings.value(isActive) == on) {
                                    copy(isActive, *notes, settings);
                                }
                                if (settings.value(mode) == constantMode) {
                                    copy(mode, *notes, settings);
                                    copy(temperature, *notes, settings);
                                }
                            });
    if (isRestored) {
        unlink(notesFile.c_str());
    }
}

std::optional<NightLightTemperature> readTemperature() {
    NightLightTemperature kelvin = 0;
    return read(STDIN_FILENO, &kelvin, sizeof kelvin) == sizeof kelvin ? std::optional(kelvin)
                                                                       : std::nullopt;
}

void answer(bool isDone) {
    const auto byte = isDone ? NightLightAnswer::done : NightLightAnswer::failed;
    // The result does not matter: if Nocta is gone, reading the next temperature fails too.
    [[maybe_unused]] const auto size = write(STDOUT_FILENO, &byte, 1);
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (!isOfHelperProtocol(argumentCount, arguments)) {
        return otherProtocolStatus;
    }
    outliveSession();
    if (argumentCount != 3) {
        return EXIT_FAILURE; // only Nocta starts this program
    }
    const std::string notesFile = arguments[1];
    const QCoreApplication application(argumentCount, arguments);
    qDBusRegisterMetaType<QByteArrayList>();
    qDBusRegisterMetaType<QHash<QString, QByteArrayList>>();
    createPrivateFolders(std::filesystem::path(notesFile).parent_path());
    const FileLock lock(notesFile + ".lock");
    if (!lock.acquire(lockTimeout)) {
        return EXIT_FAILURE;
    }
    restore(notesFile);
    while (const auto kelvin = readTemperature()) {
        answer(note(notesFile) && show(*kelvin));
    }
    restore(notesFile);
    return EXIT_SUCCESS;
}
