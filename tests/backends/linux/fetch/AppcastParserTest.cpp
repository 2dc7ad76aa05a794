#include "backends/linux/fetch/AppcastParser.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nocta {
namespace {

struct Appcast {
    std::vector<AppcastItem> items;
    std::optional<FetchError> error;
};

Appcast parseAppcast(const std::string& xml, std::size_t pieceSize = 1 << 14) {
    Appcast appcast;
    AppcastParser parser([&](const AppcastItem& item) { appcast.items.push_back(item); });
    for (std::size_t i = 0; i < xml.size() && !appcast.error; i += pieceSize) {
        appcast.error = parser.add(std::string_view(xml).substr(i, pieceSize));
    }
    if (!appcast.error) {
        appcast.error = parser.finish();
    }
    return appcast;
}

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
  <description sparkle:format="plain-text"><![CDATA[Darker & longer
nights]]></description>
  <enclosure url="https://updates.example/nocta.deb?a=1&amp;b=2" length="123"
    sparkle:os="linux" sparkle:edSignature="c2ln" type="application/octet-stream"/>
</item>)";

TEST(AppcastParser, ReleaseIsRead) {
    const auto appcast = parseAppcast(feed(whole));
    EXPECT_FALSE(appcast.error);
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
    EXPECT_EQ(item.releaseNotes, "Darker & longer\nnights");
}

TEST(AppcastParser, PiecesMayEndAnywhere) {
    const auto expected = parseAppcast(feed(whole)).items;
    for (const std::size_t size : {1, 2, 3, 7, 100}) {
        EXPECT_EQ(parseAppcast(feed(whole), size).items, expected) << size;
    }
}

TEST(AppcastParser, VersionsCanBeInTheEnclosure) {
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

TEST(AppcastParser, AnyNamespacePrefixIsAccepted) {
    const auto appcast = parseAppcast(
        R"(<rss xmlns:s="http://www.andymatuschak.org/xml-namespaces/sparkle"><channel><item>
           <s:version>8</s:version><sparkle xmlns="x"/><enclosure url="u"/></item>
           <item><version>9</version><enclosure url="u"/></item></channel></rss>)");
    EXPECT_FALSE(appcast.error);
    ASSERT_EQ(appcast.items.size(), 1U);
    EXPECT_EQ(appcast.items[0].version, "8");
}

TEST(AppcastParser, OnlyPlainNotesAreRead) {
    const auto notes = [](const std::string& description) {
        const auto appcast =
            parseAppcast(feed("<item><sparkle:version>1</sparkle:version><enclosure url='u'/>" +
                              description + "</item>"));
        return appcast.items.empty() ? "no item" : appcast.items[0].releaseNotes;
    };
    EXPECT_EQ(notes("<description sparkle:format='plain-text'>1 &lt; 2</description>"), "1 < 2");
    EXPECT_EQ(notes("<description sparkle:format='plain-text'>a<b>c</b>d</description>"), "ad")
        << "text in nested elements should be left out";
    EXPECT_EQ(notes("<description>&lt;b&gt;bold&lt;/b&gt;</description>"), "");
    EXPECT_EQ(notes("<description format='plain-text'>bold</description>"), "");
    EXPECT_EQ(notes("<description sparkle:format='html'>bold</description>"), "");
}

TEST(AppcastParser, ItemWithoutAReleaseIsSkipped) {
    for (const auto* const item :
         {"<item/>", "<item><enclosure url='u'/></item>",
          "<item><sparkle:version>1</sparkle:version></item>",
          "<item><sparkle:version>1</sparkle:version><enclosure/></item>"}) {
        const auto appcast = parseAppcast(feed(item));
        EXPECT_FALSE(appcast.error) << item;
        EXPECT_TRUE(appcast.items.empty()) << item;
    }
}

TEST(AppcastParser, ItemWithAnInvalidValueIsSkipped) {
    const auto with = [](const std::string& more, const std::string& attributes = {}) {
        return parseAppcast(feed("<item><sparkle:version>1</sparkle:version>" + more +
                                 "<enclosure url='u' " + attributes + "/></item>"))
            .items.size();
    };
    ASSERT_EQ(with(""), 1U);
    for (const auto& version :
         {std::string("a b"), std::string("1\xE2\x80\xAE"), std::string("../1"),
          std::string("$(reboot)"), std::string("99;x"), std::string("%n"), std::string(65, '1')}) {
        EXPECT_EQ(with("<sparkle:version>" + version + "</sparkle:version>"), 0U) << version;
        EXPECT_EQ(with("<sparkle:shortVersionString>" + version + "</sparkle:shortVersionString>"),
                  0U)
            << version;
    }
    for (const auto& value : {std::string(2049, 'x'), std::string("é"), std::string("a&#9;b")}) {
        EXPECT_EQ(with("<sparkle:channel>" + value + "</sparkle:channel>"), 0U) << value;
        EXPECT_EQ(
            with("<sparkle:minimumSystemVersion>" + value + "</sparkle:minimumSystemVersion>"), 0U)
            << value;
        EXPECT_EQ(with("", "sparkle:os='" + value + "'"), 0U) << value;
        EXPECT_EQ(with("", "sparkle:edSignature='" + value + "'"), 0U) << value;
    }
}

TEST(AppcastParser, InvalidLengthCountsAsMissing) {
    for (const auto* const length :
         {"", "x", "1.5", "99999999999999999999", "0x10", "1e3", "-1", "+1"}) {
        const auto appcast = parseAppcast(feed(
            std::string("<item><sparkle:version>1</sparkle:version><enclosure url='u' length='") +
            length + "'/></item>"));
        ASSERT_EQ(appcast.items.size(), 1U) << length;
        EXPECT_EQ(appcast.items[0].length, 0) << length;
    }
}

TEST(AppcastParser, InvalidFeedIsAnError) {
    for (const auto& text :
         {std::string(), std::string("hello"), std::string("{}"), std::string("<rss>"),
          feed(whole).substr(0, 400), feed(whole) + "<rss/>", std::string("\0\0\0", 3),
          std::string("<rss>\xFF\xFE</rss>"),
          std::string("<?xml version='1.0' encoding='x-unknown'?><rss/>"),
          feed("<item><sparkle:version>&undefined;</sparkle:version></item>")}) {
        EXPECT_EQ(parseAppcast(text).error, FetchError::feedMalformed) << text;
    }
    for (const auto* const text : {"<html></html>", "<x:rss xmlns:x='y'/>", "<RSS/>"}) {
        EXPECT_EQ(parseAppcast(text).error, FetchError::feedNotRss) << text;
    }
}

TEST(AppcastParser, DocumentTypeDeclarationEndsTheParsingBeforeItsContent) {
    const std::string laughs = R"(<!DOCTYPE rss [<!ENTITY a "ha"><!ENTITY b "&a;&a;&a;&a;&a;&a;">
        <!ENTITY c "&b;&b;&b;&b;&b;&b;"><!ENTITY d "&c;&c;&c;&c;&c;&c;">]>)";
    const std::string outside = R"(<!DOCTYPE rss [<!ENTITY f SYSTEM "file:///etc/passwd">]>)";
    std::string parameters = "<!DOCTYPE rss [<!ENTITY % a \"";
    for (int i = 0; i < 250; ++i) {
        parameters += "<!ENTITY e" + std::to_string(i) + " ''>";
    }
    parameters += "\">";
    for (int i = 0; i < 30000; ++i) {
        parameters += "%a;";
    }
    parameters += "]>";
    const std::string malformed = "<!DOCTYPE rss [ <this is no declaration> ]>";
    for (const auto& bomb :
         {laughs, outside, parameters, malformed, std::string("<!DOCTYPE rss>")}) {
        EXPECT_EQ(parseAppcast(bomb + "<rss><channel>&d;&f;</channel></rss>").error,
                  FetchError::feedHasDoctype)
            << bomb.substr(0, 100);
    }
}

TEST(AppcastParser, LongFeedIsAnError) {
    const auto padded = [](std::size_t size) {
        auto text = feed(whole);
        return text + std::string(size - text.size(), ' ');
    };
    EXPECT_EQ(parseAppcast(padded(1 << 17)).error, std::nullopt);
    EXPECT_EQ(parseAppcast(padded((1 << 17) + 1)).error, FetchError::feedTooLong);
    EXPECT_EQ(parseAppcast(padded((1 << 17) + 1), 1000).error, FetchError::feedTooLong);
}

TEST(AppcastParser, DeepAndWideDocumentsAreRead) {
    std::string deep;
    for (int i = 0; i < 40000; ++i) {
        deep += "<a>";
    }
    EXPECT_EQ(parseAppcast("<rss>" + deep).error, FetchError::feedMalformed);
    EXPECT_EQ(parseAppcast(feed("<item>" + deep)).error, FetchError::feedMalformed);
    std::string wide;
    for (int i = 0; i < 200; ++i) {
        wide += whole;
    }
    EXPECT_EQ(parseAppcast(feed(wide)).items.size(), 200U);
    std::string attributes;
    for (int i = 0; i < 10000; ++i) {
        attributes += " a" + std::to_string(i) + "=''";
    }
    EXPECT_EQ(parseAppcast(feed("<item" + attributes + "/>")).error, std::nullopt);
}

} // namespace
} // namespace nocta
