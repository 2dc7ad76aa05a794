#include "backends/linux/updates/Appcast.h"

#include <gtest/gtest.h>

#include <string>

namespace nocta {
namespace {

std::string feed(const std::string& items) {
    return R"(<?xml version="1.0" encoding="utf-8"?>
<rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle">
<channel><title>Nocta</title><description>Not of a release</description>)" +
           items + "</channel></rss>";
}

constexpr auto whole = R"(<item>
  <title>Version 1.3</title>
  <pubDate>Sat, 21 Nov 2026 12:00:00 +0000</pubDate>
  <sparkle:version> 46 </sparkle:version>
  <sparkle:shortVersionString>1.3</sparkle:shortVersionString>
  <sparkle:minimumSystemVersion>2.36</sparkle:minimumSystemVersion>
  <sparkle:channel>beta</sparkle:channel>
  <description><![CDATA[<p>Darker nights</p>]]></description>
  <enclosure url="https://updates.example/nocta.deb?a=1&amp;b=2" length="123"
    sparkle:os="linux" sparkle:edSignature="c2ln" type="application/octet-stream"/>
</item>)";

TEST(Appcast, ReleaseIsRead) {
    const auto appcast = parseAppcast(feed(whole));
    EXPECT_FALSE(appcast.error) << *appcast.error;
    ASSERT_EQ(appcast.items.size(), 1U);
    const auto& item = appcast.items[0];
    EXPECT_EQ(item.version, "46");
    EXPECT_EQ(item.shortVersionString, "1.3");
    EXPECT_EQ(item.minimumSystemVersion, "2.36");
    EXPECT_EQ(item.channel, "beta");
    EXPECT_EQ(item.os, "linux");
    EXPECT_EQ(item.url, "https://updates.example/nocta.deb?a=1&b=2");
    EXPECT_EQ(item.edSignature, "c2ln");
    EXPECT_EQ(item.length, 123);
    EXPECT_EQ(item.releaseNotes, "Darker nights");
}

TEST(Appcast, VersionsCanBeInTheEnclosure) {
    const auto appcast =
        parseAppcast(feed(R"(<item><enclosure url="https://a.example/b" sparkle:version="7"
                             sparkle:shortVersionString="0.7"/></item>
                             <item><enclosure url="c" sparkle:version="6"/></item>)"));
    ASSERT_EQ(appcast.items.size(), 2U);
    EXPECT_EQ(appcast.items[0].version, "7");
    EXPECT_EQ(appcast.items[0].shortVersionString, "0.7");
    EXPECT_EQ(appcast.items[1].shortVersionString, "6")
        << "the version should be used if there is no short version";
    EXPECT_EQ(appcast.items[1].length, 0);
}

TEST(Appcast, AnyNamespacePrefixIsAccepted) {
    const auto appcast = parseAppcast(
        R"(<rss xmlns:s="http://www.andymatuschak.org/xml-namespaces/sparkle"><channel><item>
           <s:version>8</s:version><sparkle xmlns="x"/><enclosure url="u"/></item>
           <item><version>9</version><enclosure url="u"/></item></channel></rss>)");
    EXPECT_FALSE(appcast.error);
    ASSERT_EQ(appcast.items.size(), 1U);
    EXPECT_EQ(appcast.items[0].version, "8");
}

TEST(Appcast, NotesAreConvertedToText) {
    const auto notes = [](const std::string& description) {
        const auto appcast =
            parseAppcast(feed("<item><sparkle:version>1</sparkle:version><enclosure url='u'/>" +
                              description + "</item>"));
        return appcast.items.empty() ? "" : appcast.items[0].releaseNotes;
    };
    EXPECT_EQ(notes("<description>&lt;b&gt;bold&lt;/b&gt;</description>"), "bold");
    EXPECT_EQ(notes("<description sparkle:format='plain-text'>1 &lt; 2</description>"), "1 < 2");
    EXPECT_EQ(notes("<description>a<b>c</b>d</description>"), "ad")
        << "text in nested elements should be left out";
}

TEST(Appcast, ItemWithoutAReleaseIsSkipped) {
    for (const auto* const item :
         {"<item/>", "<item><enclosure url='u'/></item>",
          "<item><sparkle:version>1</sparkle:version></item>",
          "<item><sparkle:version>1</sparkle:version><enclosure/></item>",
          "<item><sparkle:version>a b</sparkle:version><enclosure url='u'/></item>",
          "<item><sparkle:version>1\xE2\x80\xAE</sparkle:version><enclosure url='u'/></item>"}) {
        const auto appcast = parseAppcast(feed(item));
        EXPECT_FALSE(appcast.error) << item;
        EXPECT_TRUE(appcast.items.empty()) << item;
    }
    const auto endless = std::string(65, '1');
    EXPECT_TRUE(parseAppcast(feed("<item><sparkle:version>" + endless +
                                  "</sparkle:version><enclosure url='u'/></item>"))
                    .items.empty());
    EXPECT_TRUE(parseAppcast(feed("<item><sparkle:version>1</sparkle:version><enclosure url='" +
                                  std::string(2049, 'u') + "'/></item>"))
                    .items.empty());
}

TEST(Appcast, InvalidLengthCountsAsMissing) {
    for (const auto* const length : {"", "x", "1.5", "99999999999999999999", "0x10", "1e3"}) {
        const auto appcast = parseAppcast(feed(
            std::string("<item><sparkle:version>1</sparkle:version><enclosure url='u' length='") +
            length + "'/></item>"));
        ASSERT_EQ(appcast.items.size(), 1U) << length;
        EXPECT_EQ(appcast.items[0].length, 0) << length;
    }
}

TEST(Appcast, InvalidFeedIsAOneLineError) {
    for (const auto& text :
         {std::string(), std::string("hello"), std::string("{}"), std::string("<html></html>"),
          std::string("<rss>"), feed(whole).substr(0, 400), feed(whole) + "<rss/>",
          std::string("\0\0\0", 3), std::string("<rss>\xFF\xFE</rss>"),
          feed("<item><sparkle:version>&undefined;</sparkle:version></item>")}) {
        const auto appcast = parseAppcast(text);
        ASSERT_TRUE(appcast.error) << text;
        EXPECT_TRUE(appcast.error->starts_with("The feed cannot be read: "));
        EXPECT_EQ(appcast.error->find('\n'), std::string::npos);
        EXPECT_TRUE(appcast.items.empty());
    }
}

TEST(Appcast, EntityBombsAreRejected) {
    const std::string laughs = R"(<!DOCTYPE rss [<!ENTITY a "ha"><!ENTITY b "&a;&a;&a;&a;&a;&a;">
        <!ENTITY c "&b;&b;&b;&b;&b;&b;"><!ENTITY d "&c;&c;&c;&c;&c;&c;">]>)";
    const std::string outside = R"(<!DOCTYPE rss [<!ENTITY f SYSTEM "file:///etc/passwd">]>)";
    for (const auto& bomb : {laughs, outside, std::string("<!DOCTYPE rss>")}) {
        EXPECT_EQ(parseAppcast(bomb + "<rss><channel>&d;&f;</channel></rss>").error,
                  "The feed cannot be read: it contains a document type declaration");
    }
}

TEST(Appcast, DeepAndWideDocumentsAreRead) {
    std::string deep;
    for (int i = 0; i < 100000; ++i) {
        deep += "<a>";
    }
    EXPECT_TRUE(parseAppcast("<rss>" + deep).error);
    EXPECT_TRUE(parseAppcast(feed("<item>" + deep)).error);
    std::string wide;
    for (int i = 0; i < 2000; ++i) {
        wide += whole;
    }
    EXPECT_EQ(parseAppcast(feed(wide)).items.size(), 2000U);
}

} // namespace
} // namespace nocta
