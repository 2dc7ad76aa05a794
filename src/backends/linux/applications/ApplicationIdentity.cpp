#include "backends/linux/applications/ApplicationIdentity.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>
#include <utility>

namespace nocta {

namespace {

/// Names are in lowercase, because applications change the case of their names between releases. In
/// a Snap, the name of the Snap and an underscore come before the name of the application.
constexpr std::array<std::pair<std::string_view, std::string_view>, 23> bundleIdentifiers = {{
    {"zoom", "us.zoom.xos"},
    {"us.zoom.zoom", "us.zoom.xos"},
    {"zoom-client_zoom-client", "us.zoom.xos"},
    // Release channels and the vendor's other browsers have different names.
    {"google-chrome", "com.google.Chrome"},
    {"com.google.chrome", "com.google.Chrome"},
    {"teams", "com.microsoft.teams"},
    {"microsoft teams", "com.microsoft.teams"},
    {"microsoft teams - preview", "com.microsoft.teams"},
    {"com.microsoft.teams", "com.microsoft.teams"},
    {"teams-for-linux", "com.microsoft.teams2"},
    {"teams-for-linux_teams-for-linux", "com.microsoft.teams2"},
    {"com.github.ismaelmartinez.teams_for_linux", "com.microsoft.teams2"},
    {"ciscocollabhost", "com.cisco.webexmeetingsapp"},
    {"webex", "com.cisco.webexmeetingsapp"},
    {"skype", "com.skype.skype"},
    {"skypeforlinux", "com.skype.skype"},
    {"com.skype.client", "com.skype.skype"},
    {"slack", "com.tinyspeck.slackmacgap"},
    {"slack_slack", "com.tinyspeck.slackmacgap"},
    {"com.slack.slack", "com.tinyspeck.slackmacgap"},
    {"discord", "com.discord.Discord"},
    {"discord_discord", "com.discord.Discord"},
    {"com.discordapp.discord", "com.discord.Discord"},
}};

std::string_view withoutFolderAndSuffix(std::string_view desktopFile) {
    constexpr std::string_view suffix = ".desktop";
    desktopFile.remove_prefix(desktopFile.rfind('/') + 1);
    if (desktopFile.ends_with(suffix)) {
        desktopFile.remove_suffix(suffix.size());
    }
    return desktopFile;
}

bool isSameName(std::string_view name, std::string_view inSmallLetters) {
    return std::ranges::equal(name, inSmallLetters, {}, [](char letter) {
        return static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    });
}

} // namespace

std::optional<std::string> bundleIdentifierOf(const ApplicationIdentity& identity) {
    const std::array<std::string_view, 3> names = {
        identity.flatpak, withoutFolderAndSuffix(identity.desktopFile), identity.windowClass};
    for (const auto name : names) {
        const auto* const known =
            std::ranges::find_if(bundleIdentifiers, [&](const auto& application) {
                return isSameName(name, application.first);
            });
        if (known != bundleIdentifiers.end()) {
            return std::string(known->second);
        }
    }
    const auto* const own =
        std::ranges::find_if(names, [](std::string_view name) { return !name.empty(); });
    return own == names.end() ? std::nullopt : std::optional(std::string(*own));
}

bool isSameApplication(const std::optional<RunningApplication>& one,
                       const std::optional<RunningApplication>& other) {
    return one && other && one->bundleIdentifier ? one->bundleIdentifier == other->bundleIdentifier
                                                 : one == other;
}

} // namespace nocta
