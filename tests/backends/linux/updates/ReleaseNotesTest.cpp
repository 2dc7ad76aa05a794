#include "backends/linux/updates/ReleaseNotes.h"

#include <gtest/gtest.h>

#include <string>

namespace nocta {
namespace {

std::string ofHtml(const char* html) {
    return releaseNotes(QString::fromUtf8(html), NotesFormat::html);
}
std::string ofPlain(const char* text) {
    return releaseNotes(QString::fromUtf8(text), NotesFormat::plainText);
}

TEST(ReleaseNotes, HtmlIsConvertedToText) {
    EXPECT_EQ(ofHtml("<h2>What is new</h2><ul><li>Darker <b>nights</b></li>\n  <li>Fish &amp; "
                     "chips &#8211; &#x263A;</li></ul><p>Thanks</p>"),
              "What is new\n\n• Darker nights\n• Fish & chips – ☺\n\nThanks");
    EXPECT_EQ(ofHtml("one<br>two<BR/>three"), "one\ntwo\nthree");
    EXPECT_EQ(ofHtml("no markup"), "no markup");
    EXPECT_EQ(ofHtml(""), "");
}

TEST(ReleaseNotes, ActiveAndHiddenContentIsRemoved) {
    EXPECT_EQ(ofHtml("a<script>alert('<p>')</script>b<style>p{}</style>c<!-- <p>d -->e"), "abce");
    EXPECT_EQ(ofHtml("<img src='file:///etc/passwd' onerror=x>seen"), "seen");
    EXPECT_EQ(ofHtml("<a href=\"javascript:x\">link</a>"), "link");
    // Direction overrides, zero-width spaces, bells and escape characters should be removed.
    EXPECT_EQ(ofHtml("a&#x202E;b&#8203;c&#7;d&#27;[31me"), "abcd[31me");
    EXPECT_EQ(ofPlain("a\u202E\u200B\x07\x1B[31mb"), "a[31mb");
}

TEST(ReleaseNotes, MalformedMarkupIsKeptAsTextOrRemoved) {
    EXPECT_EQ(ofHtml("a < b"), "a");
    EXPECT_EQ(ofHtml("a &lt; b & c &nothing; &#xD800; &#99999999; &#; &"),
              "a < b & c &nothing; &#xD800; &#99999999; &#; &");
    EXPECT_EQ(ofHtml("<"), "");
    EXPECT_EQ(ofHtml("<>a</>"), "a");
    EXPECT_EQ(ofHtml("a<!-- b"), "a");
    EXPECT_EQ(ofHtml("a<script>b"), "a");
    EXPECT_EQ(ofHtml("a<script>&amp;<i></script >b"), "ab");
}

TEST(ReleaseNotes, PlainTextKeepsItsLineBreaks) {
    EXPECT_EQ(ofPlain("\r\n one \t two \r\n\n\n\n <b>three</b> &amp; \n"),
              "one two\n\n<b>three</b> &amp;");
}

TEST(ReleaseNotes, LongNotesAreTruncated) {
    for (const auto* const unit : {"long ", "line\n", "<p>", "<", "&amp;", "<script>", "🌙"}) {
        const auto text = QString::fromUtf8(unit).repeated(1 << 19);
        EXPECT_LT(releaseNotes(text, NotesFormat::html).size(), 70000U) << unit;
        EXPECT_LT(releaseNotes(text, NotesFormat::plainText).size(), 70000U) << unit;
    }
}

} // namespace
} // namespace nocta
