#include "backends/linux/fetch/ReleaseNotes.h"

#include "backends/linux/fetch/FetchProtocol.h"

#include <gtest/gtest.h>

#include <string>

namespace nocta {
namespace {

TEST(ReleaseNotes, LineBreaksAreKeptAndSpacesCollapse) {
    EXPECT_EQ(releaseNotes("\r\n one \t two \r\n\n\n\n <b>three</b> &amp; \n four\n"),
              "one two\n\n<b>three</b> &amp;\nfour");
    EXPECT_EQ(releaseNotes("• Darker nights – ☺🌙"), "• Darker nights – ☺🌙");
    EXPECT_EQ(releaseNotes("a\u00A0\u2003b"), "a b");
    EXPECT_EQ(releaseNotes(""), "");
    EXPECT_EQ(releaseNotes(" \n\t\n"), "");
}

TEST(ReleaseNotes, HiddenCharactersAreRemoved) {
    // A direction override, a zero-width space, a bell, an escape character and a private character
    EXPECT_EQ(releaseNotes("a\u202E\u200B\x07\x1B[31m\uE000b"), "a[31mb");
    EXPECT_EQ(releaseNotes(std::string("a\0b", 3)), "ab");
}

TEST(ReleaseNotes, InvalidUtf8IsRemoved) {
    EXPECT_EQ(releaseNotes("a\xFF\xFE\xC3(b\xE2\x80"), "a(b");
    EXPECT_EQ(releaseNotes("a\xED\xA0\x80\xF4\x90\x80\x80z"), "az");
}

TEST(ReleaseNotes, LongNotesAreTruncatedBetweenCharacters) {
    for (const auto* const unit : {"long ", "line\n", "é", "🌙", "x🌙"}) {
        std::string text;
        while (text.size() < 3 * maxReleaseNotesSize) {
            text += unit;
        }
        const auto notes = releaseNotes(text);
        EXPECT_LE(notes.size(), maxReleaseNotesSize) << unit;
        EXPECT_GT(notes.size(), maxReleaseNotesSize - 10) << unit;
        EXPECT_TRUE(notes.ends_with("…")) << unit;
        EXPECT_EQ(releaseNotes(notes), notes) << unit;
    }
}

} // namespace
} // namespace nocta
