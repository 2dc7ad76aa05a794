// Fuzzes the settings file, which another program or a crash may have damaged.

#include "Expect.h"
#include "backends/linux/files/IniDefaultsStore.h"
#include "backends/linux/files/IniDocument.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>
#include <unistd.h>
#include <variant>
#include <vector>

namespace nocta {
namespace {

namespace fs = std::filesystem;

/// The program writes only its own keys. The store requires only that they are plain words.
constexpr std::string_view ownKey = "warmthLevel";

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

/// A double without a fraction is written as an integer; every getter reads it as the same number.
bool readsAs(const DefaultsValue& read, const DefaultsValue& written) {
    const auto* const number = std::get_if<double>(&written);
    const auto* const integer = std::get_if<std::int64_t>(&read);
    return read == written ||
           (number != nullptr && integer != nullptr && static_cast<double>(*integer) == *number);
}

void checkReading(const IniDocument& document, std::string_view text) {
    const auto again = IniDocument::parse(document.text());
    expect(again.isWellFormed(), "written text is well formed");
    expect(again.values() == document.values(), "written text reads back the same");
    expect(again.text() == document.text(), "text that was read back is written the same");
    if (document.isWellFormed()) {
        const auto end = text.empty() || text.ends_with('\n') ? "" : "\n";
        expect(document.text() == std::string(text) + end, "a well-formed file is kept whole");
    }
}

void checkSetting(const IniDocument& document, const DefaultsValue& value) {
    auto changed = document;
    changed.set(ownKey, value);
    const auto again = IniDocument::parse(changed.text());
    expect(again.isWellFormed(), "a file with a new value is well formed");
    auto values = again.values();
    expect(values.contains(ownKey) && readsAs(values.at(std::string(ownKey)), value),
           "a new value reads back the same");

    auto others = document.values();
    others.erase(std::string(ownKey));
    values.erase(std::string(ownKey));
    expect(values == others, "other keys keep their values");

    auto without = document;
    without.remove(ownKey);
    changed.remove(ownKey);
    expect(changed.text() == without.text() || changed.text() == "[General]\n" + without.text(),
           "a new value changes no other line");
}

void checkRemoving(const IniDocument& document) {
    auto without = document;
    without.remove(ownKey);
    expect(!without.values().contains(ownKey), "a removed key is gone");
    const auto kept = linesOf(without.text());
    auto next = kept.begin();
    for (const auto& line : linesOf(document.text())) {
        if (next != kept.end() && *next == line) {
            ++next;
        } else {
            const auto key = line.find_first_not_of(" \t\r");
            expect(key != std::string::npos && line.compare(key, ownKey.size(), ownKey) == 0,
                   "only the key's lines are removed");
        }
    }
    expect(next == kept.end(), "the lines keep their order");
}

/// A temporary folder for one store.
class Folder {
public:
    Folder() { fs::create_directories(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { fs::remove_all(path_); }

    fs::path file() const { return path_ / "nocta.conf"; }
    bool has(const char* name) const { return fs::exists(path_ / name); }

private:
    fs::path path_ = fs::temp_directory_path() / ("nocta-fuzz-" + std::to_string(getpid()));
};

std::string contentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void checkStore(const IniDocument& document, const std::string& text) {
    const Folder folder;
    std::ofstream(folder.file(), std::ios::binary) << text;
    {
        IniDefaultsStore store(folder.file());
        expect(contentOf(folder.file()) == text, "reading changes nothing");
        store.setDouble(0.25, ownKey);
    }
    const IniDefaultsStore again(folder.file());
    expect(again.doubleForKey(ownKey) == 0.25, "another store reads what was written");
    auto expected = document;
    expected.set(ownKey, 0.25);
    expect(contentOf(folder.file()) == expected.text(), "the file contains the document");
    expect(folder.has("nocta.conf.damaged") != document.isWellFormed(),
           "a file is moved aside if it is damaged");
    if (!document.isWellFormed()) {
        expect(contentOf(folder.file().string() + ".damaged") == text,
               "a damaged file is kept unchanged");
    }
}

} // namespace
} // namespace nocta

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    std::cerr.rdbuf(nullptr); // the store prints a line for every damaged file
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    const auto document = nocta::IniDocument::parse(text);
    nocta::checkReading(document, text);
    nocta::checkSetting(document, 0.25);
    for (const auto& [key, value] : document.values()) {
        nocta::checkSetting(document, value);
    }
    nocta::checkRemoving(document);
    nocta::checkStore(document, text);
    return 0;
}
