#include "updates/ReleaseChecks.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

namespace nocta {
namespace {

const AppcastItem good{.version = "46",
                       .shortVersionString = "1.3",
                       .url = "https://updates.example/nocta.deb",
                       .edSignature = "c2ln",
                       .length = 1000};

TEST(ReleaseChecks, GoodReleaseHasNoProblem) {
    EXPECT_EQ(problemWith(good), std::nullopt);
}

TEST(ReleaseChecks, AddressMustBeAPackageOverHttps) {
    for (const auto* const url :
         {"http://updates.example/nocta.deb", "file:///tmp/nocta.deb",
          "ftp://updates.example/nocta.deb", "nocta.deb", "HTTPS:nocta.deb"}) {
        auto item = good;
        item.url = url;
        EXPECT_EQ(problemWith(item), "The file's address does not use HTTPS") << url;
    }
    for (const auto* const url :
         {"https://updates.example/nocta.sh", "https://updates.example/nocta.rpm",
          "https://updates.example/", "https://updates.example/nocta.deb?x", "https://deb"}) {
        auto item = good;
        item.url = url;
        EXPECT_EQ(problemWith(item), "The file is not a package") << url;
    }
}

TEST(ReleaseChecks, SignatureAndLengthAreRequired) {
    auto item = good;
    item.edSignature = "";
    EXPECT_EQ(problemWith(item), "The file is not signed");
    for (const auto length :
         {std::int64_t{0}, std::int64_t{-1}, maxPackageSize + 1, std::int64_t{1} << 62}) {
        item = good;
        item.length = length;
        EXPECT_EQ(problemWith(item), "The feed gives no valid length for the file") << length;
    }
    item.length = maxPackageSize;
    EXPECT_EQ(problemWith(item), std::nullopt);
}

TEST(ReleaseChecks, UpstreamVersionHasNeitherEpochNorRevision) {
    EXPECT_EQ(upstreamVersion("1.3"), "1.3");
    EXPECT_EQ(upstreamVersion("1.3-1"), "1.3");
    EXPECT_EQ(upstreamVersion("2:1.3-rc-1"), "1.3-rc");
    EXPECT_EQ(upstreamVersion("2:"), "");
    EXPECT_EQ(upstreamVersion(""), "");
}

} // namespace
} // namespace nocta
