#include "backends/linux/applications/ApplicationIdentity.h"

#include "backends/linux/applications/FlatpakInfo.h"
#include "support/Process.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace nocta {
namespace {

TEST(ApplicationIdentity, KnownApplicationsMapToMacOsBundleIdentifiers) {
    struct Case {
        ApplicationIdentity identity;
        std::string bundleIdentifier;
    };
    const std::vector<Case> cases = {
        {{"", "", "zoom"}, "us.zoom.xos"},
        {{"", "", "Zoom"}, "us.zoom.xos"},
        {{"us.zoom.Zoom", "", ""}, "us.zoom.xos"},
        {{"", "zoom-client_zoom-client", ""}, "us.zoom.xos"},
        {{"", "", "Google-chrome"}, "com.google.Chrome"},
        {{"com.google.Chrome", "", ""}, "com.google.Chrome"},
        {{"", "google-chrome", ""}, "com.google.Chrome"},
        {{"", "/usr/share/applications/google-chrome.desktop", ""}, "com.google.Chrome"},
        {{"", "chrome-meet-Default", "Google-chrome"}, "com.google.Chrome"},
        {{"", "teams", ""}, "com.microsoft.teams"},
        {{"", "", "Microsoft Teams - Preview"}, "com.microsoft.teams"},
        {{"", "", "Microsoft Teams"}, "com.microsoft.teams"},
        {{"com.microsoft.Teams", "", ""}, "com.microsoft.teams"},
        {{"", "", "teams-for-linux"}, "com.microsoft.teams2"},
        {{"", "teams-for-linux_teams-for-linux", ""}, "com.microsoft.teams2"},
        {{"com.github.IsmaelMartinez.teams_for_linux", "", ""}, "com.microsoft.teams2"},
        {{"", "", "CiscoCollabHost"}, "com.cisco.webexmeetingsapp"},
        {{"", "webex.desktop", ""}, "com.cisco.webexmeetingsapp"},
        {{"", "", "Skype"}, "com.skype.skype"},
        {{"", "skypeforlinux", ""}, "com.skype.skype"},
        {{"com.skype.Client", "", ""}, "com.skype.skype"},
        {{"", "", "Slack"}, "com.tinyspeck.slackmacgap"},
        {{"", "/var/lib/snapd/desktop/applications/slack_slack.desktop", ""},
         "com.tinyspeck.slackmacgap"},
        {{"com.slack.Slack", "", ""}, "com.tinyspeck.slackmacgap"},
        {{"", "", "discord"}, "com.discord.Discord"},
        {{"", "discord_discord", ""}, "com.discord.Discord"},
        {{"com.discordapp.Discord", "", ""}, "com.discord.Discord"},
    };
    for (const auto& [identity, bundleIdentifier] : cases) {
        EXPECT_EQ(bundleIdentifierOf(identity), bundleIdentifier)
            << identity.flatpak << identity.desktopFile << identity.windowClass;
    }
}

TEST(ApplicationIdentity, OtherApplicationsKeepTheirOwnIdentifier) {
    struct Case {
        ApplicationIdentity identity;
        std::string bundleIdentifier;
    };
    const std::vector<Case> cases = {
        {{"", "", "Chromium"}, "Chromium"},
        {{"", "", "Brave-browser"}, "Brave-browser"},
        {{"", "", "Microsoft-edge"}, "Microsoft-edge"},
        {{"", "", "Google-chrome-beta"}, "Google-chrome-beta"},
        {{"", "", "zoomer"}, "zoomer"},
        {{"", "", "zoo"}, "zoo"},
        {{"org.gimp.GIMP", "gimp", "Gimp"}, "org.gimp.GIMP"},
        {{"", "org.gnome.Nautilus", "Nautilus"}, "org.gnome.Nautilus"},
        {{"", "/opt/apps/editor.desktop", "Editor"}, "editor"},
        {{"", "/opt/apps/.desktop", "Editor"}, "Editor"},
    };
    for (const auto& [identity, bundleIdentifier] : cases) {
        EXPECT_EQ(bundleIdentifierOf(identity), bundleIdentifier);
    }
    EXPECT_EQ(bundleIdentifierOf({}), std::nullopt);
}

class FlatpakInfoTest : public ::testing::Test {
protected:
    TemporaryFolder root;

    std::string idIn(const std::string& text) {
        writeFile(root.path() + "/.flatpak-info", text);
        return flatpakId(root.path());
    }
};

TEST_F(FlatpakInfoTest, ReturnsTheApplicationId) {
    EXPECT_EQ(idIn("[Application]\nname=us.zoom.Zoom\nruntime=runtime/org.example/x86_64\n\n"
                   "[Instance]\nname=other\n"),
              "us.zoom.Zoom");
    EXPECT_EQ(idIn("[Instance]\nname=other\n[Application]\nname=com.slack.Slack"),
              "com.slack.Slack");
}

TEST_F(FlatpakInfoTest, ReturnsAnEmptyIdWithoutAName) {
    for (const auto* const text :
         {"", "\n\n", "name=a", "[Application]", "[Application]\nname=", "[Application]\nname",
          "[Application]\nname=a b", "[Application]\nname=../../etc", "[Runtime]\nname=a",
          "[Application]\n[Instance]\nname=a"}) {
        EXPECT_EQ(idIn(text), "") << text;
    }
    EXPECT_EQ(idIn("[Application]\nname=" + std::string(256, 'a') + "\n"), "");
    EXPECT_EQ(idIn(std::string(1 << 20, '#') + "\n[Application]\nname=a\n"), "")
        << "a file that is too large should not be read";
}

TEST_F(FlatpakInfoTest, ReadsOnlyRegularFiles) {
    EXPECT_EQ(flatpakId(root.path()), "") << "without a file the ID should be empty";
    EXPECT_EQ(flatpakId("/nonexistent"), "");
    const auto info = root.path() + "/.flatpak-info";
    ASSERT_EQ(mkfifo(info.c_str(), 0600), 0);
    EXPECT_EQ(flatpakId(root.path()), "")
        << "a named pipe should be ignored without waiting for a writer";
    std::filesystem::remove(info);
    writeFile(root.path() + "/other", "[Application]\nname=us.zoom.Zoom\n");
    std::filesystem::create_symlink("other", info);
    EXPECT_EQ(flatpakId(root.path()), "");
    std::filesystem::remove(info);
    std::filesystem::create_directory(info);
    EXPECT_EQ(flatpakId(root.path()), "");
}

} // namespace
} // namespace nocta
