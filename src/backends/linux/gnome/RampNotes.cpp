#include "backends/linux/gnome/RampNotes.h"

#include "backends/linux/files/FileContent.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <glib.h>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace nocta {

namespace {

constexpr std::size_t maxFileSize = 1 << 24; // bytes
constexpr gsize maxRampSize = 1 << 16;
constexpr auto runGroup = "run";
constexpr auto runKey = "compositor";
constexpr std::string_view crtcPrefix = "crtc-";

using Channel = std::vector<std::uint16_t>;
constexpr auto channels = std::to_array<std::pair<const char*, Channel GammaRamp::*>>(
    {{"red", &GammaRamp::red}, {"green", &GammaRamp::green}, {"blue", &GammaRamp::blue}});

/// Returns an empty channel if it is missing or damaged.
Channel readChannel(GKeyFile* file, const char* group, const char* key) {
    gsize size = 0;
    g_autofree gint* levels = g_key_file_get_integer_list(file, group, key, &size, nullptr);
    const auto isLevel = [](gint level) {
        return level >= 0 && level <= std::numeric_limits<std::uint16_t>::max();
    };
    if (levels == nullptr || size > maxRampSize || !std::all_of(levels, levels + size, isLevel)) {
        return {};
    }
    return {levels, levels + size};
}

std::optional<std::uint32_t> crtcOf(std::string_view group) {
    std::uint32_t crtc = 0;
    if (!group.starts_with(crtcPrefix)) {
        return std::nullopt;
    }
    const auto digits = group.substr(crtcPrefix.size());
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), crtc);
    const auto isNumber = result.ec == std::errc() && result.ptr == digits.data() + digits.size();
    return isNumber ? std::optional(crtc) : std::nullopt;
}

} // namespace

RampNotes readRampNotes(const std::filesystem::path& file) {
    RampNotes notes;
    std::string text;
    g_autoptr(GKeyFile) keys = g_key_file_new();
    if (readFile(file, maxFileSize, text, 0) != 0 ||
        g_key_file_load_from_data(keys, text.data(), text.size(), G_KEY_FILE_NONE, nullptr) ==
            FALSE) {
        return notes;
    }
    g_autofree char* run = g_key_file_get_string(keys, runGroup, runKey, nullptr);
    notes.run = run == nullptr ? "" : run;
    g_auto(GStrv) groups = g_key_file_get_groups(keys, nullptr);
    for (auto** group = groups; *group != nullptr; ++group) {
        const auto crtc = crtcOf(*group);
        GammaRamp ramp;
        for (const auto& [key, channel] : channels) {
            ramp.*channel = readChannel(keys, *group, key);
        }
        if (crtc && ramp.size() > 0 && ramp.green.size() == ramp.size() &&
            ramp.blue.size() == ramp.size()) {
            notes.ramps.emplace(*crtc, std::move(ramp));
        }
    }
    return notes;
}

bool writeRampNotes(const std::filesystem::path& file, const RampNotes& notes) {
    g_autoptr(GKeyFile) keys = g_key_file_new();
    g_key_file_set_string(keys, runGroup, runKey, notes.run.c_str());
    for (const auto& [crtc, ramp] : notes.ramps) {
        const auto group = std::string(crtcPrefix) + std::to_string(crtc);
        for (const auto& [key, channel] : channels) {
            std::vector<gint> levels((ramp.*channel).begin(), (ramp.*channel).end());
            g_key_file_set_integer_list(keys, group.c_str(), key, levels.data(), levels.size());
        }
    }
    return g_key_file_save_to_file(keys, file.c_str(), nullptr) != FALSE;
}

} // namespace nocta
