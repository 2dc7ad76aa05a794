#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace {

using Folders = std::set<std::string>;

const Folders services = {"settings", "display", "color", "grayscale", "breaks", "system"};

Folders with(Folders folders, const Folders& more) {
    folders.insert(more.begin(), more.end());
    return folders;
}

/// Maps each folder to the other folders that its files may include.
const std::map<std::string, Folders> allowed = {
    {"base", {}},
    {"platform", {"base"}},
    {"settings", {"base", "platform"}},
    {"display", {"base", "platform", "settings"}},
    {"color", {"base", "platform", "settings", "display"}},
    {"grayscale", {"base", "platform", "display"}},
    {"breaks", {"base", "platform", "settings"}},
    {"system", {"base", "platform", "settings", "display", "breaks"}},
    {"app", with(services, {"base", "platform"})},
    {"updates", {"base", "platform"}},
    {"symbols", {}},
    {"ui", with(services, {"base", "platform", "app", "symbols"})},
    {"backends/virtual", {"base", "platform"}},
    {"backends/shared", {"base", "platform"}},
    {"backends/linux", {"base", "platform", "symbols", "updates", "backends/shared"}},
    {"backends/macos", {"base", "platform", "backends/shared"}},
    {"tour", with(services, {"base", "platform", "app", "symbols", "ui", "backends/virtual"})},
};

/// The main file may include any header, because it connects the desktop to the user interface.
bool isMain(const std::filesystem::path& file) {
    return file == "main.cpp";
}

/// Folders that must not use Qt, so that they can be built and tested without Qt.
const Folders withoutQt =
    with(services, {"base", "platform", "updates", "app", "backends/virtual"});

std::string folderOf(const std::string& path) {
    const auto slash = path.find('/');
    const auto first = path.substr(0, slash);
    return first == "backends" ? path.substr(0, path.find('/', slash + 1)) : first;
}

template <class Visit>
void forEachInclude(Visit visit) {
    std::filesystem::path const root = NOCTA_SOURCE_DIR "/src";
    std::regex const include(R"re(^\s*#\s*(?:include|import)\s*(["<])([^">]+)[">])re");
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        const auto extension = entry.path().extension();
        if (extension != ".h" && extension != ".cpp" && extension != ".mm") {
            continue;
        }
        const auto file = std::filesystem::relative(entry.path(), root);
        std::ifstream input(entry.path());
        for (std::string line; std::getline(input, line);) {
            std::smatch match;
            if (std::regex_search(line, match, include)) {
                visit(file, folderOf(file.generic_string()), match[2].str(), match[1] == "\"");
            }
        }
    }
}

TEST(IncludeDirection, EveryIncludeIsAllowed) {
    int includes = 0;
    forEachInclude([&](const std::filesystem::path& file, const std::string& from,
                       const std::string& header, bool isOurs) {
        if (!isOurs || isMain(file)) {
            return;
        }
        ++includes;
        auto const to = folderOf(header);
        ASSERT_TRUE(allowed.contains(from)) << file << " should be in a folder listed in `allowed`";
        EXPECT_TRUE(allowed.contains(to)) << file << " should not include " << header;
        EXPECT_TRUE(from == to || allowed.at(from).contains(to))
            << file << " should not include " << header;
    });
    EXPECT_GT(includes, 100) << "the source folder should contain files with includes";
}

TEST(IncludeDirection, ServicesPortsAndTheVirtualDesktopDoNotIncludeQt) {
    forEachInclude([&](const std::filesystem::path& file, const std::string& from,
                       const std::string& header, bool isOurs) {
        if (!isOurs && withoutQt.contains(from)) {
            EXPECT_FALSE(header.starts_with("Q") || header.starts_with("xcb/"))
                << file << " should not include " << header;
        }
    });
}

} // namespace
