// nocta-magnifier: turns the screen of a GNOME session gray with the shell's magnifier, until the
// Nocta process that started it dies or asks it to restore the colors. See `MagnifierProtocol.h`
// for the messages. The first argument is the file in which this program saves the user's settings
// while its own are in effect. If that file exists at the start, an earlier helper was killed, and
// the settings in the file are restored first.

#include "backends/linux/files/FileDescriptor.h"
#include "backends/linux/files/PrivateFolder.h"
#include "backends/linux/gnome/MagnifierProtocol.h"
#include "backends/linux/process/HelperProtocol.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gio/gio.h>
#include <iostream>
#include <optional>
#include <string>
#include <sys/file.h>
#include <unistd.h>

namespace {

using namespace nocta;

constexpr auto magnifierSchema = "org.gnome.desktop.a11y.magnifier";
constexpr auto applicationsSchema = "org.gnome.desktop.a11y.applications";

struct Setting {
    const char* schema;
    const char* key;
    const char* value; ///< in the text format of GVariant
};

// If the user's magnifier is on, only the saturation changes. If it is off, these values make it
// show the screen unchanged, no matter how the user has configured it, and it is switched on last.
constexpr Setting withoutColor = {magnifierSchema, "color-saturation", "0.0"};
constexpr auto asItIs = std::to_array<Setting>({
    {magnifierSchema, "mag-factor", "1.0"},
    {magnifierSchema, "screen-position", "'full-screen'"},
    {magnifierSchema, "lens-mode", "false"},
    {magnifierSchema, "show-cross-hairs", "false"},
    {magnifierSchema, "invert-lightness", "false"},
    {magnifierSchema, "brightness-red", "0.0"},
    {magnifierSchema, "brightness-green", "0.0"},
    {magnifierSchema, "brightness-blue", "0.0"},
    {magnifierSchema, "contrast-red", "0.0"},
    {magnifierSchema, "contrast-green", "0.0"},
    {magnifierSchema, "contrast-blue", "0.0"},
    {applicationsSchema, "screen-magnifier-enabled", "true"},
});

/// Returns null if the schema or the key is not installed, because GLib aborts a program that uses
/// a missing schema or key. The caller owns the result.
GSettings* settingsWith(const char* schemaId, const char* key) {
    auto* const source = g_settings_schema_source_get_default();
    g_autoptr(GSettingsSchema) schema =
        source == nullptr ? nullptr : g_settings_schema_source_lookup(source, schemaId, TRUE);
    return schema != nullptr && g_settings_schema_has_key(schema, key) != FALSE
               ? g_settings_new(schemaId)
               : nullptr;
}

bool isAvailable() {
    g_autoptr(GSettings) magnifier = settingsWith(magnifierSchema, withoutColor.key);
    g_autoptr(GSettings) applications = settingsWith(applicationsSchema, asItIs.back().key);
    return magnifier != nullptr && applications != nullptr;
}

bool isMagnifierOn() {
    g_autoptr(GSettings) settings = settingsWith(applicationsSchema, asItIs.back().key);
    return g_settings_get_boolean(settings, asItIs.back().key) != FALSE;
}

bool isGray() {
    g_autoptr(GSettings) settings = settingsWith(magnifierSchema, withoutColor.key);
    return isMagnifierOn() && g_settings_get_double(settings, withoutColor.key) == 0;
}

/// Sets a key. An empty string means that the user had not set a value, so the key is reset.
void set(const char* schema, const char* key, const std::string& text) {
    g_autoptr(GSettings) settings = settingsWith(schema, key);
    if (settings == nullptr) {
        return;
    }
    if (text.empty()) {
        g_settings_reset(settings, key);
        return;
    }
    g_autoptr(GVariant) now = g_settings_get_value(settings, key);
    g_autoptr(GVariant) value =
        g_variant_parse(g_variant_get_type(now), text.c_str(), nullptr, nullptr, nullptr);
    if (value != nullptr) { // otherwise someone has edited the file
        g_settings_set_value(settings, key, value);
    }
}

void note(GKeyFile* file, const Setting& setting) {
    g_autoptr(GSettings) settings = settingsWith(setting.schema, setting.key);
    if (settings == nullptr) {
        return;
    }
    g_autoptr(GVariant) value = g_settings_get_user_value(settings, setting.key);
    g_autofree char* text = value == nullptr ? nullptr : g_variant_print(value, FALSE);
    g_key_file_set_value(file, setting.schema, setting.key, text == nullptr ? "" : text);
}

/// Changes nothing unless the old values could be saved.
void turnGray(const std::string& stateFile) {
    const auto changesMore = !isMagnifierOn();
    g_autoptr(GKeyFile) file = g_key_file_new();
    note(file, withoutColor);
    if (changesMore) {
        for (const auto& setting : asItIs) {
            note(file, setting);
        }
    }
    if (g_key_file_save_to_file(file, stateFile.c_str(), nullptr) == FALSE) {
        std::cerr << "nocta: cannot write " << stateFile << "; the screen stays in color"
                  << std::endl;
        return;
    }
    set(withoutColor.schema, withoutColor.key, withoutColor.value);
    if (changesMore) {
        for (const auto& setting : asItIs) {
            set(setting.schema, setting.key, setting.value);
        }
    }
    g_settings_sync();
}

void putBack(const std::string& stateFile) {
    g_autoptr(GKeyFile) file = g_key_file_new();
    if (g_key_file_load_from_file(file, stateFile.c_str(), G_KEY_FILE_NONE, nullptr) == FALSE) {
        return;
    }
    const auto putBackGroup = [&](const char* schema) {
        g_auto(GStrv) keys = g_key_file_get_keys(file, schema, nullptr, nullptr);
        for (auto** key = keys; key != nullptr && *key != nullptr; ++key) {
            g_autofree char* value = g_key_file_get_value(file, schema, *key, nullptr);
            set(schema, *key, value == nullptr ? "" : value);
        }
    };
    putBackGroup(applicationsSchema); // switched off first, to hide the other changes
    putBackGroup(magnifierSchema);
    g_settings_sync();
    unlink(stateFile.c_str());
}

/// Takes the lock that allows only one helper at a time. A new helper waits until the previous one
/// has exited. The lock is held until the process exits.
FileDescriptor lock(const std::filesystem::path& folder) {
    createPrivateFolders(folder);
    FileDescriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    while (flock(descriptor.get(), LOCK_EX) != 0 && errno == EINTR) {
    }
    return descriptor;
}

void sendAnswer(MagnifierAnswer answer) {
    if (write(STDOUT_FILENO, &answer, 1) != 1) {
        std::_Exit(EXIT_SUCCESS); // Nocta is gone
    }
}

std::optional<char> readCommand() {
    char byte = 0;
    return read(STDIN_FILENO, &byte, 1) == 1 ? std::optional(byte) : std::nullopt;
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
    const std::string stateFile = arguments[1];
    const auto held = lock(std::filesystem::path(stateFile).parent_path());
    if (!isAvailable()) {
        sendAnswer(MagnifierAnswer::unavailable);
        return EXIT_SUCCESS;
    }
    putBack(stateFile);
    sendAnswer(isGray() ? MagnifierAnswer::gray : MagnifierAnswer::colored);
    if (readCommand() == magnifierTurnGray) {
        turnGray(stateFile);
        while (readCommand()) {
        }
        putBack(stateFile);
    }
    return EXIT_SUCCESS;
}
