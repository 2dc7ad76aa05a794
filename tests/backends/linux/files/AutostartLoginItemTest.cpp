#include "backends/linux/files/AutostartLoginItem.h"

#include "contracts/LoginItemContract.h"
#include "support/Process.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace nocta {

namespace fs = std::filesystem;

/// Each access creates a new item for the same entry, so that the test reads the entry from the
/// file.
struct AutostartHarness {
    TemporaryFolder folder;
    std::string entry = folder.path() + "/autostart/nocta.desktop";
    std::optional<AutostartLoginItem> current;

    LoginItem& loginItem() { return current.emplace(entry, "/usr/bin/nocta"); }
    void switchOff() const { writeFile(entry, contentOf(entry) + "Hidden=true\n"); }
    void refuse() const { writeFile(folder.path() + "/autostart", "in the folder's place"); }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Autostart, LoginItemContract, AutostartHarness);

namespace {

using Status = LoginItem::Status;

/// Returns the value of a key in an entry with one group, and decodes the escapes in the value.
std::string valueOf(const std::string& entry, const std::string& key) {
    const auto start = entry.find("\n" + key + "=") + key.size() + 2;
    const auto raw = entry.substr(start, entry.find('\n', start) - start);
    std::string value;
    for (std::size_t i = 0; i < raw.size(); ++i) {
        if (raw[i] != '\\') {
            value += raw[i];
            continue;
        }
        constexpr std::string_view names = "sntr\\";
        constexpr std::string_view characters = " \n\t\r\\";
        value += characters.at(names.find(raw.at(++i)));
    }
    return value;
}

/// Splits a command into words as a session does. Throws if the command is ambiguous.
std::vector<std::string> wordsOf(const std::string& command) {
    std::vector<std::string> words;
    std::size_t i = 0;
    const auto require = [](bool condition) {
        if (!condition) {
            throw std::runtime_error("not a command");
        }
    };
    while (i < command.size()) {
        std::string word;
        const auto isQuoted = command[i] == '"';
        for (i += isQuoted ? 1 : 0; command.at(i) != (isQuoted ? '"' : ' '); ++i) {
            constexpr std::string_view special = "\"`$\\";
            if (isQuoted && command[i] == '\\') {
                ++i;
                require(special.find(command.at(i)) != std::string_view::npos);
            } else {
                constexpr std::string_view reserved = " \t\n\"'\\><~|&;$*?#()`";
                require((isQuoted ? special : reserved).find(command[i]) == std::string_view::npos);
                if (command[i] == '%') {
                    ++i;
                    require(command.at(i) == '%');
                }
            }
            word += command[i];
        }
        words.push_back(word);
        for (++i; i < command.size() && command[i] == ' '; ++i) {
        }
    }
    return words;
}

const std::vector<std::string> oddNames = {
    "plain",       "two  blanks ", "\"quoted\"", "'single'",  R"(back\slash)",
    R"(\\two\)",   "$HOME",        "`true`",     "new\nline", "tab\tand\rreturn",
    "~;&|<>*?#()", R"(\n\s\")",    "äöü 👁"};

class AutostartLoginItemTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
    std::string autostart = folder.path() + "/config/autostart";
    std::string entry = autostart + "/nocta.desktop";
    AutostartLoginItem item{entry, "/usr/bin/nocta"};

    /// Writes an entry with this content and returns its status.
    Status statusOf(const std::string& content) {
        fs::create_directories(autostart);
        writeFile(entry, content);
        return item.status();
    }
    std::vector<std::string> namesInFolder() const {
        std::vector<std::string> names;
        for (const auto& file : fs::directory_iterator(autostart)) {
            names.push_back(file.path().filename().string());
        }
        return names;
    }
};

TEST_F(AutostartLoginItemTest, EntryStartsTheProgramByItsPath) {
    ASSERT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(contentOf(entry), "[Desktop Entry]\n"
                                "Type=Application\n"
                                "Name=Nocta\n"
                                "Icon=nocta\n"
                                "Exec=\"/usr/bin/nocta\"\n"
                                "Terminal=false\n");
    EXPECT_EQ(namesInFolder(), std::vector<std::string>{"nocta.desktop"});
}

TEST_F(AutostartLoginItemTest, ProgramPathIsAlwaysOneWordOfTheCommand) {
    auto names = oddNames;
    names.insert(names.end(), {"100% sure", "%f", "%%u%"});
    for (const auto& name : names) {
        const auto program = "/opt/" + name + "/nocta";
        AutostartLoginItem odd(entry, program);
        ASSERT_EQ(odd.registerItem(), std::nullopt);
        EXPECT_EQ(odd.status(), Status::enabled) << name;
        EXPECT_EQ(wordsOf(valueOf(contentOf(entry), "Exec")), std::vector<std::string>{program});
    }
}

/// GNOME and other desktops start programs through GLib. GLib looks for the program before it
/// decodes doubled percent signs, so this test skips names that contain percent signs.
TEST_F(AutostartLoginItemTest, ProgramsWithUnusualPathsAreStarted) {
    for (const auto& name : oddNames) {
        const auto program = folder.path() + "/" + name;
        const auto told = folder.path() + "/told";
        writeFile(program, "#!/bin/sh\nprintf '%s.' \"$#\" \"$0\" >\"$TOLD.new\"\n"
                           "mv \"$TOLD.new\" \"$TOLD\"\n");
        fs::permissions(program, fs::perms::owner_all);
        AutostartLoginItem odd(entry, program);
        ASSERT_EQ(odd.registerItem(), std::nullopt);
        ASSERT_EQ(runToEnd({"gio", "launch", entry}, {{"TOLD", told}}), 0) << name;
        ASSERT_TRUE(waitUntil([&] { return fs::exists(told); })) << name;
        EXPECT_EQ(contentOf(told), "0." + program + ".");
        fs::remove(told);
    }
}

TEST_F(AutostartLoginItemTest, EntryWithACommandIsEnabled) {
    for (const auto* const content : {
             "[Desktop Entry]\nExec=nocta",
             "[Desktop Entry]\nExec=env QT_SCALE_FACTOR=2 /opt/another/nocta --by hand\n",
             "[Desktop Entry]\r\nType=Application\r\nExec=nocta\r\nHidden=false\r\n",
             "[Desktop Entry]\n  Exec \t = nocta \nHidden = false\n",
             "# a note\n\n[Desktop Entry]\nHidden=\nX-GNOME-Autostart-enabled=true\nExec=nocta\n",
             "[Desktop Entry]\nExec=nocta\n[Desktop Action New]\nHidden=true\n",
             "[Desktop Entry]\nExec=nocta\n#Hidden=true\nNotHidden=true\n",
         }) {
        EXPECT_EQ(statusOf(content), Status::enabled) << content;
    }
}

TEST_F(AutostartLoginItemTest, DisabledEntryIsNotEnabledUntilItIsRegistered) {
    for (const auto* const content : {
             "[Desktop Entry]\nExec=nocta\nHidden=true\n",
             "[Desktop Entry]\nHidden=true\nExec=nocta\n",
             "[Desktop Entry]\nExec=nocta\nX-GNOME-Autostart-enabled=false\n",
             "[Desktop Entry]\nExec=nocta\nX-MATE-Autostart-enabled=false\n",
             "[Desktop Entry]\r\nExec=nocta\r\nHidden=true\r\n",
             "[Desktop Entry]\nExec=nocta\n\tHidden  = true ",
             "[Desktop Entry]\nExec=nocta\n[Other]\nA=1\n[Desktop Entry]\nHidden=true\n",
         }) {
        EXPECT_EQ(statusOf(content), Status::notRegistered) << content;
        EXPECT_EQ(item.registerItem(), std::nullopt);
        EXPECT_EQ(item.status(), Status::enabled) << content;
    }
}

TEST_F(AutostartLoginItemTest, InvalidEntryIsNotRegistered) {
    EXPECT_EQ(item.status(), Status::notRegistered)
        << "without a folder the item should not be registered";
    for (const auto* const content : {
             "",
             "Exec=nocta\n",
             "[Desktop Entry]\n",
             "[Desktop Entry]\nExec=\n",
             "[Desktop Entry]\nExec\n",
             "[Desktop Entry]\n#Exec=nocta\nTryExec=nocta\n",
             "[desktop entry]\nExec=nocta\n",
             "[Desktop Action New]\nExec=nocta\n[Other]\nExec=nocta\n",
             "[Desktop Entry]\nType=Application\n[Desktop Action New]\nExec=nocta\n",
         }) {
        EXPECT_EQ(statusOf(content), Status::notRegistered) << content;
    }
}

TEST_F(AutostartLoginItemTest, HugeFileIsNotReadCompletely) {
    EXPECT_EQ(statusOf("[Desktop Entry]\nExec=nocta\n"), Status::enabled);
    fs::resize_file(entry, 1ULL << 40);
    EXPECT_EQ(item.status(), Status::notRegistered);
    EXPECT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.status(), Status::enabled);
}

TEST_F(AutostartLoginItemTest, NamedPipeDoesNotBlock) {
    fs::create_directories(autostart);
    ASSERT_EQ(mkfifo(entry.c_str(), 0600), 0);
    EXPECT_EQ(item.status(), Status::notRegistered);
    EXPECT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.status(), Status::enabled);
}

TEST_F(AutostartLoginItemTest, EndlessDeviceIsNotReadForever) {
    fs::create_directories(autostart);
    fs::create_symlink("/dev/zero", entry);
    EXPECT_EQ(item.status(), Status::notRegistered);
    EXPECT_EQ(item.unregisterItem(), std::nullopt);
    EXPECT_FALSE(fs::is_symlink(entry));
    EXPECT_TRUE(fs::exists("/dev/zero"));
}

TEST_F(AutostartLoginItemTest, LinkIsFollowedAndStaysALink) {
    const auto target = folder.path() + "/elsewhere.desktop";
    fs::create_directories(autostart);
    fs::create_symlink("../../elsewhere.desktop", entry);
    EXPECT_EQ(item.status(), Status::notRegistered)
        << "a link without a target should not count as registered";
    EXPECT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.status(), Status::enabled);
    EXPECT_TRUE(fs::is_symlink(entry));
    EXPECT_TRUE(fs::is_regular_file(target));
    EXPECT_EQ(item.unregisterItem(), std::nullopt);
    EXPECT_FALSE(fs::is_symlink(entry));
}

TEST_F(AutostartLoginItemTest, BrokenLinkCanBeUnregistered) {
    fs::create_directories(autostart);
    fs::create_symlink("/nowhere/at/all", entry);
    EXPECT_EQ(item.status(), Status::notRegistered);
    EXPECT_NE(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.unregisterItem(), std::nullopt);
    EXPECT_FALSE(fs::is_symlink(entry));
    EXPECT_EQ(item.registerItem(), std::nullopt);
}

TEST_F(AutostartLoginItemTest, FolderInPlaceOfTheEntryIsLeftAlone) {
    fs::create_directories(entry + "/inside");
    EXPECT_EQ(item.status(), Status::notRegistered);
    EXPECT_NE(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.unregisterItem(), std::strerror(EISDIR));
    EXPECT_TRUE(fs::exists(entry + "/inside"));
    EXPECT_EQ(namesInFolder(), std::vector<std::string>{"nocta.desktop"});
}

TEST_F(AutostartLoginItemTest, FileInPlaceOfTheFolderIsLeftAlone) {
    fs::create_directories(folder.path() + "/config");
    writeFile(autostart, "a file where the folder should be");
    EXPECT_EQ(item.status(), Status::notRegistered);
    EXPECT_EQ(item.registerItem(), std::strerror(ENOTDIR));
    EXPECT_EQ(item.unregisterItem(), std::nullopt)
        << "without an entry, unregistering should succeed";
    EXPECT_EQ(contentOf(autostart), "a file where the folder should be");
}

TEST_F(AutostartLoginItemTest, ReadOnlyFolderIsAnError) {
    ASSERT_EQ(item.registerItem(), std::nullopt);
    for (const auto& path : {folder.path(), folder.path() + "/config", entry}) {
        fs::permissions(path, fs::perms::all);
    }
    fs::permissions(autostart, fs::perms::all & ~(fs::perms::owner_write | fs::perms::group_write |
                                                  fs::perms::others_write));
    const auto before = contentOf(entry);
    constexpr uid_t nobody = 65534;
    const auto self = geteuid();
    ASSERT_TRUE(self != 0 || seteuid(nobody) == 0); // root can write everywhere
    AutostartLoginItem another(entry, "/opt/another/nocta");
    const auto registering = another.registerItem();
    const auto unregistering = another.unregisterItem();
    const auto status = another.status();
    ASSERT_EQ(seteuid(self), 0);
    fs::permissions(autostart, fs::perms::owner_all);

    EXPECT_EQ(registering, std::strerror(EACCES));
    EXPECT_EQ(unregistering, std::strerror(EACCES));
    EXPECT_EQ(status, Status::enabled);
    EXPECT_EQ(contentOf(entry), before);
    EXPECT_EQ(namesInFolder(), std::vector<std::string>{"nocta.desktop"});
}

TEST_F(AutostartLoginItemTest, FolderThatCannotBeCreatedIsAnError) {
    AutostartLoginItem nowhere("/proc/nocta/autostart/nocta.desktop", "/usr/bin/nocta");
    EXPECT_EQ(nowhere.registerItem(), std::strerror(ENOENT));
    EXPECT_EQ(nowhere.unregisterItem(), std::nullopt);
    EXPECT_EQ(nowhere.status(), Status::notRegistered);
}

TEST_F(AutostartLoginItemTest, FullDiskKeepsTheOldEntryAndLeavesNoOtherFiles) {
    ASSERT_EQ(statusOf("[Desktop Entry]\nExec=nocta\nHidden=true\n"), Status::notRegistered);
    // While no file of this process can grow, every write fails as on a full disk.
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit none{.rlim_cur = 0, .rlim_max = before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &none);
    const auto error = item.registerItem();
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);

    EXPECT_EQ(error, std::strerror(EFBIG));
    EXPECT_EQ(contentOf(entry), "[Desktop Entry]\nExec=nocta\nHidden=true\n");
    EXPECT_EQ(namesInFolder(), std::vector<std::string>{"nocta.desktop"});
    EXPECT_EQ(item.registerItem(), std::nullopt)
        << "registering should work once files can grow again";
    EXPECT_EQ(item.status(), Status::enabled);
}

TEST_F(AutostartLoginItemTest, EntryIsReplacedInOneStep) {
    const std::string old = "[Desktop Entry]\nExec=nocta\n" + std::string(2000, '#') + "\n";
    ASSERT_EQ(statusOf(old), Status::enabled);
    const auto sameFile = folder.path() + "/same-file";
    fs::create_hard_link(entry, sameFile);
    ASSERT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(contentOf(sameFile), old)
        << "a reader that has the old file open should see the complete old entry";
    EXPECT_NE(contentOf(entry), old);
    EXPECT_EQ(namesInFolder(), std::vector<std::string>{"nocta.desktop"});
}

} // namespace
} // namespace nocta
