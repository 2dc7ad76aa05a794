#include "updates/VersionOrder.h"

#include <gtest/gtest.h>

#include <array>

namespace nocta {
namespace {

TEST(VersionOrder, EachVersionIsNewerThanTheOneBefore) {
    constexpr std::array inOrder = {"0",
                                    "0.0.1",
                                    "0.9",
                                    "1.0~1",
                                    "1.0~2",
                                    "1.0~10",
                                    "1.0a1",
                                    "1.0b1",
                                    "1.0b2",
                                    "1.0b10",
                                    "1.0rc",
                                    "1.0",
                                    "1.0.1~1",
                                    "1.0.1",
                                    "1.2",
                                    "1.9",
                                    "1.10",
                                    "2",
                                    "2.0.1",
                                    "10",
                                    "20261121",
                                    "99999999999999999999999999999998",
                                    "99999999999999999999999999999999"};
    for (std::size_t i = 0; i < inOrder.size(); ++i) {
        for (std::size_t j = 0; j < inOrder.size(); ++j) {
            EXPECT_EQ(compareVersions(inOrder[i], inOrder[j]), i <=> j)
                << inOrder[i] << " " << inOrder[j];
        }
    }
}

TEST(VersionOrder, SeparatorsAreIgnored) {
    for (const auto* const same : {"1", "1.0", "1.0.0", "01", " 1 ", "1.", ".1", "1-0", "1+0"}) {
        EXPECT_EQ(compareVersions("1", same), std::weak_ordering::equivalent) << same;
    }
    for (const auto* const nothing : {"", "...", "\n", "\xFF\xFE", "0.0"}) {
        EXPECT_EQ(compareVersions("", nothing), std::weak_ordering::equivalent) << nothing;
    }
}

} // namespace
} // namespace nocta
