// nocta-magnifier: turns the screen of a GNOME session gray with the shell's magnifier, for as long
// as the Nocta that started it wants that and lives. It speaks `MagnifierProtocol.h`, and its first
// argument is the file in which it notes the user's settings while they are not in force. Whoever
// finds that file at its start has not seen the end of an earlier helper, and puts them back first.

#include "backends/linux/files/FileDescriptor.h"
#include "backends/linux/files/PrivateFolder.h"
#include "backends/linux/gnome/MagnifierProtocol.h"
#include "backends/linux/process/HelperProtocol.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gio/gio.h>
#include <iostream>
#include <memory>
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

// With a magnifier that the user has switched on, nothing but the saturation changes. One that is
// off is made to show the screen as it is, whatever is set for the day it is needed, and goes on
// last.
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

template <auto release>
struct Release {
    template <class Object>
    void operator()(Object* object) const {
        release(object);
    }
};
template <class Object, auto release>
using Owned = std::unique_ptr<Object, Release<release>>;
using Schema = Owned<GSettingsSchema, g_settings_schema_unref>;
using Settings = Owned<GSettings, g_object_unref>;
using Variant = Owned<GVariant, g_variant_unref>;
using KeyFile = Owned<GKeyFile, g_key_file_unref>;
using Text = Owned<char, g_free>;
using Texts = Owned<char*, g_strfreev>;

/// None where the schema or the key is not installed: GLib ends a program that asks all the same.
Settings settingsWith(const char* schemaId, const char* key) {
    auto* const source = g_settings_schema_source_get_default();
    const Schema schema(
        source == nullptr ? nullptr : g_settings_schema_source_lookup(source, schemaId, TRUE));
    return Settings(schema && g_settings_schema_has_key(schema.get(), key) != FALSE
                        ? g_settings_new(schemaId)
                        : nullptr);
}

bool isAvailable() {
    return settingsWith(magnifierSchema, withoutColor.key) &&
           settingsWith(applicationsSchema, asItIs.back().key);
}

bool isMagnifierOn() {
    const auto settings = settingsWith(applicationsSchema, asItIs.back().key);
    return g_settings_get_boolean(settings.get(), asItIs.back().key) != FALSE;
}

bool isGray() {
    const auto settings = settingsWith(magnifierSchema, withoutColor.key);
    return isMagnifierOn() && g_settings_get_double(settings.get(), withoutColor.key) == 0;
}

/// A key that has no value of the user's own is reset by an empty text.
void set(const char* schema, const char* key, const std::string& text) {
    const auto settings = settingsWith(schema, key);
    if (!settings) {
        return;
    }
    if (text.empty()) {
        g_settings_reset(settings.get(), key);
        return;
    }
    const Variant now(g_settings_get_value(settings.get(), key));
    const Variant value(
        g_variant_parse(g_variant_get_type(now.get()), text.c_str(), nullptr, nullptr, nullptr));
    if (value) { // else somebody has edited the file
        g_settings_set_value(settings.get(), key, value.get());
    }
}

void note(GKeyFile* file, const Setting& setting) {
    const auto settings = settingsWith(setting.schema, setting.key);
    if (!settings) {
        return;
    }
    const Variant value(g_settings_get_user_value(settings.get(), setting.key));
    const Text text(value ? g_variant_print(value.get(), FALSE) : nullptr);
    g_key_file_set_value(file, setting.schema, setting.key, text ? text.get() : "");
}

/// Changes nothing that could not be noted.
void turnGray(const std::string& stateFile) {
    const auto changesMore = !isMagnifierOn();
    const KeyFile file(g_key_file_new());
    note(file.get(), withoutColor);
    if (changesMore) {
        for (const auto& setting : asItIs) {
            note(file.get(), setting);
        }
    }
    if (g_key_file_save_to_file(file.get(), stateFile.c_str(), nullptr) == FALSE) {
        std::cerr << "nocta: cannot write " << stateFile << "; the screen keeps its colours"
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
    const KeyFile file(g_key_file_new());
    if (g_key_file_load_from_file(file.get(), stateFile.c_str(), G_KEY_FILE_NONE, nullptr) ==
        FALSE) {
        return;
    }
    const auto putBackGroup = [&](const char* schema) {
        const Texts keys(g_key_file_get_keys(file.get(), schema, nullptr, nullptr));
        for (auto* const* key = keys.get(); key != nullptr && *key != nullptr; ++key) {
            const Text value(g_key_file_get_value(file.get(), schema, *key, nullptr));
            set(schema, *key, value ? value.get() : "");
        }
    };
    putBackGroup(applicationsSchema); // off first, so that nothing else is seen to change
    putBackGroup(magnifierSchema);
    g_settings_sync();
    unlink(stateFile.c_str());
}

/// One helper at a time; it waits for the end of another. Held until the process ends.
FileDescriptor lock(const std::filesystem::path& folder) {
    createPrivateFolders(folder);
    FileDescriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    while (flock(descriptor.get(), LOCK_EX) != 0 && errno == EINTR) {
    }
    return descriptor;
}

void sendAnswer(MagnifierAnswer answer) {
    if (write(STDOUT_FILENO, &answer, 1) != 1) {
        std::_Exit(EXIT_SUCCESS); // Nocta has gone
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
    // Whoever ends the session ends Nocta too, and this process is there for what happens then.
    for (const auto signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) {
        std::signal(signal, SIG_IGN);
    }
    setsid();
    if (argumentCount != 3) {
        return EXIT_FAILURE; // nobody but Nocta starts it
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
