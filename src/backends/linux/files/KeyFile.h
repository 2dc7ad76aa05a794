#pragma once

#include <glib.h>
#include <string>

namespace nocta {

/// Parses desktop entries and other files in GLib's format. Returns null if the text has another
/// format. The caller owns the result:
///
///     g_autoptr(GKeyFile) file = parseKeyFile(text);
inline GKeyFile* parseKeyFile(const std::string& text) {
    g_autoptr(GKeyFile) file = g_key_file_new();
    return g_key_file_load_from_data(file, text.data(), text.size(), G_KEY_FILE_NONE, nullptr) ==
                   FALSE
               ? nullptr
               : g_steal_pointer(&file);
}

} // namespace nocta
