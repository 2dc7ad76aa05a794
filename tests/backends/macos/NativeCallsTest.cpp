#include "backends/macos/NativeServiceCalls.h"
#include "backends/macos/NativeShellCalls.h"

#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;

const fs::path root = NOCTA_SOURCE_DIR "/src";

/// Removes comments, because they can name functions that are not called.
std::string withoutComments(const fs::path& file) {
    std::ifstream input(file);
    const std::string text{std::istreambuf_iterator<char>(input), {}};
    static const std::regex comment(R"(//[^\n]*|/\*[^*]*\*+(?:[^/*][^*]*\*+)*/)");
    return std::regex_replace(text, comment, "");
}

bool isSpace(char character) {
    return std::isspace(static_cast<unsigned char>(character)) != 0;
}

bool isOfAWord(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}

/// Source text without white space, with a record of where the white space separated words.
struct Code {
    explicit Code(std::string_view source) {
        char last = ' ';
        for (const char character : source) {
            if (!isSpace(character)) {
                isInsideAWord.push_back(isOfAWord(character) && isOfAWord(last));
                text += character;
            }
            last = character;
        }
        isInsideAWord.push_back(false);
    }

    std::string text;
    std::vector<bool> isInsideAWord; ///< has one more element than `text`
};

/// Counts occurrences that begin and end at word boundaries.
int occurrences(const Code& wanted, const Code& code) {
    int count = 0;
    for (auto at = code.text.find(wanted.text); at != std::string::npos;
         at = code.text.find(wanted.text, at + 1)) {
        const auto end = at + wanted.text.size();
        count += code.isInsideAWord[at] || code.isInsideAWord[end] ? 0 : 1;
    }
    return count;
}

void expectEachOnce(std::span<const NativeCall> calls) {
    std::map<std::string, Code> files;
    for (const auto& [file, text] : calls) {
        if (!files.contains(file)) {
            files.emplace(file, withoutComments(root / "backends/macos" / file));
        }
        EXPECT_EQ(occurrences(Code(text), files.at(file)), 1) << file << ": " << text;
    }
}

TEST(NativeCalls, EachCallAppearsExactlyOnceInItsFile) {
    expectEachOnce(nativeServiceCalls);
    expectEachOnce(nativeShellCalls);
}

TEST(NativeCalls, CallsAppearInNoOtherFile) {
    const std::regex call(
        R"(\b(?:CG|NS|CL|UN|SM|SPU|MADisplayFilter|DisplayServices)[A-Z]\w+\s*[(*.\]:])");
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (!entry.is_regular_file() ||
            entry.path().generic_string().find("/backends/macos/") != std::string::npos) {
            continue;
        }
        const auto code = withoutComments(entry.path());
        std::smatch match;
        EXPECT_FALSE(std::regex_search(code, match, call)) << entry.path() << ": " << match.str();
    }
}

} // namespace
