#include "backends/linux/fetch/FetchProtocol.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>

namespace nocta {
namespace {

const AppcastItem item{.version = "46",
                       .shortVersionString = "1.3~rc1",
                       .minimumSystemVersion = "2.36",
                       .channel = "beta",
                       .os = "linux",
                       .url = "https://updates.example/nocta.deb?a=1",
                       .edSignature = "c2ln",
                       .length = std::numeric_limits<std::int64_t>::max(),
                       .releaseNotes = "\"Darker\" nights\n\n• 🌙"};

std::optional<FetchAnswer> parseOwn(const FetchAnswer& answer) {
    auto line = serialized(answer);
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    line.pop_back();
    return parseFetchAnswer(line);
}

TEST(FetchProtocol, AnswersReadBackAsWritten) {
    const Package package{.name = "nocta", .version = "1:1.3-1", .architecture = "amd64"};
    for (const auto& answer :
         {FetchAnswer(item), FetchAnswer(package), FetchAnswer(FetchProgress{123}),
          FetchAnswer(FetchStatus{404}), FetchAnswer(FetchEnd{}),
          FetchAnswer(FetchFailure{FetchError::fileNotSaved, 28})}) {
        EXPECT_EQ(parseOwn(answer), answer) << serialized(answer);
    }
}

TEST(FetchProtocol, LongestItemFitsIntoALine) {
    auto longest = item;
    longest.version = longest.shortVersionString = std::string(maxVersionSize, '1');
    longest.minimumSystemVersion = longest.channel = longest.os = longest.url =
        longest.edSignature = std::string(maxFeedValueSize, '"'); // escaped with a second character
    longest.releaseNotes = std::string(maxReleaseNotesSize, '"');
    EXPECT_LE(serialized(longest).size(), maxFetchLineSize);
    EXPECT_EQ(parseOwn(longest), FetchAnswer(longest));
}

TEST(FetchProtocol, ItemWithAnInvalidValueIsRefused) {
    const auto isRefused = [](const AppcastItem& changed) { return !parseOwn(changed); };
    ASSERT_FALSE(isRefused(item));
    for (const auto& text :
         {std::string(), std::string("1 3"), std::string("../../x"), std::string("1/2"),
          std::string("1\n2"), std::string(65, '1'), std::string("１")}) {
        auto changed = item;
        changed.version = text;
        EXPECT_TRUE(isRefused(changed)) << text;
        changed = item;
        changed.shortVersionString = text;
        EXPECT_TRUE(isRefused(changed)) << text;
    }
    for (const auto member : {&AppcastItem::minimumSystemVersion, &AppcastItem::channel,
                              &AppcastItem::os, &AppcastItem::url, &AppcastItem::edSignature}) {
        for (const auto& text :
             {std::string(2049, 'x'), std::string("a\nb"), std::string("\x7f"), std::string("é")}) {
            auto changed = item;
            changed.*member = text;
            EXPECT_TRUE(isRefused(changed)) << text;
        }
    }
    auto changed = item;
    changed.length = -1;
    EXPECT_TRUE(isRefused(changed));
    for (const auto& notes :
         {std::string((1 << 14) + 1, 'x'), std::string("a\u202Eb"), std::string("a\x1B[31m"),
          std::string(" a"), std::string("a\n\n\nb")}) {
        changed = item;
        changed.releaseNotes = notes;
        EXPECT_TRUE(isRefused(changed)) << notes;
    }
}

TEST(FetchProtocol, LineThatIsNotExactlyAnAnswerIsRefused) {
    for (const auto* const line :
         {"",
          " ",
          "{}",
          "[]",
          "null",
          "1",
          "\"end\"",
          "{",
          "{\"end\":0}}",
          "{\"end\":1}",
          "{\"end\":0,\"status\":200}",
          "{\"end\":0,\"more\":1}",
          "{\"end\":\"0\"}",
          "{\"status\":1000}",
          "{\"status\":-1}",
          "{\"status\":2.5}",
          "{\"status\":\"200\"}",
          "{\"status\":true}",
          "{\"status\":null}",
          "{\"received\":-1}",
          "{\"received\":9223372036854775808}",
          "{\"error\":18,\"detail\":0}",
          "{\"error\":4294967296,\"detail\":0}",
          "{\"error\":0}",
          "{\"detail\":0}",
          "{\"error\":0,\"detail\":2147483648}",
          "{\"item\":{}}",
          "{\"item\":[]}",
          "{\"item\":1}",
          "{\"package\":{}}",
          "{\"package\":{\"name\":\"nocta\",\"version\":\"1\"}}",
          "{\"package\":{\"name\":\"a\",\"version\":\"1\",\"architecture\":\"x\",\"path\":\"/\"}}",
          "{\"package\":{\"name\":\"a\",\"version\":\"1\",\"architecture\":\"x\"},\"end\":0}",
          "{\"package\":{\"name\":\"a\\u0007\",\"version\":\"1\",\"architecture\":\"x\"}}"}) {
        EXPECT_EQ(parseFetchAnswer(line), std::nullopt) << line;
    }
    const auto deep = std::string(1 << 15, '[');
    EXPECT_EQ(parseFetchAnswer(deep), std::nullopt);
    EXPECT_EQ(parseFetchAnswer(deep + std::string(1 << 15, ']')), std::nullopt);
}

} // namespace
} // namespace nocta
